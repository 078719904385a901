// SPDX-License-Identifier: MIT
#include "line/plugin_check/check_process.h"

#include <unistd.h>

#include <cstdio>

#include "base/transform.h"
#include "line/plugin_check/check.h"
#include "line/worker/parent_link.h"
#include "line/worker/plugin_load.h"
#include "line/worker/worker.h"
#include "plugin/dynamic_library.h"
#include "plugin/isp_plugin.h"
#include "plugin/sign_verify_plugin.h"

using namespace zvisp;

namespace line {

namespace {

bool HasAny(void* library, const std::vector<ExportName>& names) {
  return !FindExports(library, names, ExportNeed::kRequired).present.empty();
}

// Which calls the library has shows which plug-in it is meant to be.
void FindKind(const std::string& file, CheckAnswer& answer) {
  const OpenedLibrary library =
      OpenLibrary(CCpTransform().ConvertUTF8StringToUnicode(file).c_str());
  if (library.handle == nullptr) return;
  answer.has_isp_export = HasAny(library.handle, CCpIsp::ExportNames());
  answer.has_sign_export = HasAny(library.handle, CCpSignVerify::ExportNames());
}

CheckAnswer Answer(const CheckRow& row, const CheckContext& context) {
  const Finding finding = row.run(context);
  CheckAnswer answer;
  answer.outcome = static_cast<std::uint32_t>(finding.outcome);
  answer.text = finding.text;
  // It is loaded already, so nothing of it runs a second time.
  if (row.needs == Needs::kNothing && finding.outcome == CheckOutcome::kPassed) {
    FindKind(context.file, answer);
  }
  return answer;
}

}  // namespace

void RunCheckProcess() noexcept {
  ParentLink parent(kWorkerSocket);
  const std::optional<Frame> frame = parent.Receive();
  const auto request = frame ? Decode<CheckRequest>(*frame) : std::nullopt;
  const CheckRow* const row = request ? FindCheck(request->id) : nullptr;
  if (row == nullptr) _exit(1);
  CheckContext context = {request->file, request->directory, request->with_device, {}};
  context.announce = [&parent](const std::string& call) {
    if (parent.IsParentsChild()) parent.Send(Encode(CallMessage{call}));
  };
  // Calls run with the locale that the first conversion of a path leaves.
  static_cast<void>(CCpTransform().ConvertWCHARToANSIString(L"path"));
  const CheckAnswer answer = Answer(*row, context);
  // A plug-in's fork returns twice.
  if (parent.IsParentsChild()) parent.Send(Encode(answer));
  // Without the destructors and handlers of the plug-in: unloading is a check of its own.
  _exit(0);
}

}  // namespace line
