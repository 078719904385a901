// SPDX-License-Identifier: MIT
#include "line/supervise/judge_words.h"

#include <utility>

#include "line/supervise/output_follower.h"
#include "line/supervise/worker_process.h"

namespace line {

std::optional<JudgedWords> JudgeInWorker(const std::vector<std::string>& words,
                                         std::string& error) {
  OutputFollower output;
  WorkerProcess worker;
  if (!output.Open(error) || !worker.Start(words, output.Descriptor(), -1, error)) {
    return std::nullopt;
  }
  // Without a time limit: a worker that only judges loads no plug-in.
  const std::optional<Frame> frame = worker.WaitForFrame();
  std::optional<JudgedWords> judged = frame ? DecodeJudged(*frame) : std::nullopt;
  worker.Send(FrameBytes(MessageType::kBye, ""));
  if (!judged) {
    error = "The worker ended before it had judged the words; try them with zvisp.";
    return std::nullopt;
  }
  judged->said = output.TakeText();
  return judged;
}

}  // namespace line
