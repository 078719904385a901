// SPDX-License-Identifier: MIT
//
// The process of one check: zvisp-line started once more, as for a worker. It gets a CheckRequest,
// says before each call of the plug-in what it is about to call (CallMessage), and sends one
// CheckAnswer.
#ifndef ZVISP_LINE_PLUGIN_CHECK_CHECK_PROCESS_H_
#define ZVISP_LINE_PLUGIN_CHECK_CHECK_PROCESS_H_

#include <cstdint>
#include <string>

#include "line/worker/messages.h"

namespace line {

// The word after the program's name that makes it the process of a check. Not for users.
inline constexpr const char* kCheckCommand = "check-of-zvisp-line";

struct CheckRequest {
  static constexpr MessageType kType = MessageType::kGo;
  std::string id, file, directory;
  bool with_device = false;
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(id);
    archive(file);
    archive(directory);
    archive(with_device);
  }
};

struct CheckAnswer {
  static constexpr MessageType kType = MessageType::kResult;
  std::uint32_t outcome = 0;  // CheckOutcome
  std::string text;
  bool has_isp_export = false, has_sign_export = false;  // of the check that needs nothing
  bool has_returned = true;                              // false: the parent made this up
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(outcome);
    archive(text);
    archive(has_isp_export);
    archive(has_sign_export);
  }
};

// The whole life of such a process. Never returns.
[[noreturn]] void RunCheckProcess() noexcept;

}  // namespace line

#endif  // ZVISP_LINE_PLUGIN_CHECK_CHECK_PROCESS_H_
