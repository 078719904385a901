// SPDX-License-Identifier: MIT
#include "line/supervise/judge_words.h"

#include <utility>

#include "line/supervise/output_follower.h"
#include "line/supervise/worker_process.h"

namespace line {

std::optional<std::vector<JudgedWords>> JudgeInWorker(
    const std::vector<std::vector<std::string>>& words, std::string& error) {
  OutputFollower output;
  WorkerProcess worker;
  if (!output.Open(error) || !worker.Start(output.Descriptor(), -1, error)) return std::nullopt;
  std::vector<JudgedWords> verdicts;
  for (const std::vector<std::string>& one : words) {
    // One list at a time, so that what is printed until the verdict belongs to it. Without a time
    // limit: a worker that only judges loads no plug-in.
    worker.Send(Encode(WordsMessage{one}));
    const std::optional<Frame> frame = worker.WaitForFrame();
    std::optional<JudgedWords> judged = frame ? DecodeJudged(*frame) : std::nullopt;
    if (!judged) {
      error = "The worker ended before it had judged the words; try them with zvisp.";
      return std::nullopt;
    }
    judged->said = output.TakeText();
    verdicts.push_back(std::move(*judged));
  }
  worker.Send(FrameBytes(MessageType::kBye, ""));
  return verdicts;
}

}  // namespace line
