// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>
#include <optional>

#include "base/transform.h"
#include "line/plugin_check/checks.h"
#include "line/plugin_check/guarded_bytes.h"
#include "line/plugin_check/surroundings.h"
#include "line/worker/library_file.h"
#include "plugin/sign_verify_plugin.h"

using namespace zvisp;

namespace line::checks {

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

// A request in guarded memory, all zero.
class SignRequest {
 public:
  explicit SignRequest(Guard guard = Guard::kNone) : m_bytes(sizeof(Args), guard) {}
  Args* operator->() const { return Get(); }
  Args* Get() const { return static_cast<Args*>(static_cast<void*>(m_bytes.Begin())); }
  bool IsPatternWhole() const { return m_bytes.IsPatternWhole(); }

 private:
  GuardedBytes m_bytes;
};

void Put(char (&field)[kSignTextCapacity], const std::string& text) {
  std::memcpy(field, text.c_str(), std::min<std::size_t>(text.size(), kSignTextCapacity - 1));
}

// The request of --sw --dsmode 2, whose keys are the plug-in's own.
void Fill(const CheckContext& context, const SignRequest& request) {
  request->enumSignatureType = CP_DIGITAL_SIGNATURE_SW;
  request->enumSwMode = CP_DIGITAL_SIGNATURE_SW_MODE_INTERNAL_KEY;
  Put(request->szFwFile, context.directory + "/missing.bin");
  Put(request->szSignatureFile, context.directory + "/missing.sig");
  Put(request->szKeyPair, "0");
}

struct SignCall {
  const char* name;
  std::uint32_t action;
  int (*make)(const CCpSignVerify& plugin, const Args* args);
};

int Sign(const CCpSignVerify& plugin, const Args* args) {
  return plugin.SignFw(args);
}

int Verify(const CCpSignVerify& plugin, const Args* args) {
  return plugin.VerifySignature(args, nullptr);
}

constexpr SignCall kCalls[] = {
    {"SignFwExport", CP_DIGITAL_SIGNATURE_ACTION_SIGN, Sign},
    {"VerifySignatureExport", CP_DIGITAL_SIGNATURE_ACTION_VERIFY, Verify},
};

// Loads the plug-in, hands both calls a request of their own, and judges what they did with it.
template <typename FillIn, typename Judge>
Finding TryBoth(const CheckContext& context, Guard guard, FillIn fill_in, Judge judge) {
  CCpSignVerify plugin;
  context.announce("loading");
  const std::wstring path = CCpTransform().ConvertUTF8StringToUnicode(context.file);
  if (!plugin.LoadSignVerfiyDllFile(path.c_str())) return NotLoaded();
  for (const SignCall& call : kCalls) {
    const SignRequest request(guard);
    fill_in(request, call);
    context.announce(call.name);
    const int code = call.make(plugin, request.Get());
    const std::string why = judge(request, call, code);
    if (!why.empty()) return Failed(call.name + (" " + why));
  }
  return Passed();
}

std::string WhyNotRefused(const SignRequest& /*request*/, const SignCall& /*call*/, int code) {
  return code != 0 ? "" : "answered with success: check the request first, and return 0.";
}

}  // namespace

Finding SignZeros(const CheckContext& context) {
  return TryBoth(
      context, Guard::kNone, [](const SignRequest&, const SignCall&) {}, WhyNotRefused);
}

Finding SignMissingFile(const CheckContext& context) {
  return TryBoth(
      context, Guard::kNone,
      [&](const SignRequest& request, const SignCall& call) {
        Fill(context, request);
        request->enumActionType = call.action;
      },
      WhyNotRefused);
}

// Nothing but the forbidden page ends the texts.
Finding SignEndlessPath(const CheckContext& context) {
  return TryBoth(
      context, Guard::kAfter,
      [&](const SignRequest& request, const SignCall& call) {
        std::memset(static_cast<void*>(request.Get()), 'x', sizeof(Args));
        request->enumSignatureType = CP_DIGITAL_SIGNATURE_SW;
        request->enumSwMode = CP_DIGITAL_SIGNATURE_SW_MODE_INTERNAL_KEY;
        request->enumActionType = call.action;
        request->nKeyPairIndex = 0;
      },
      WhyNotRefused);
}

Finding SignRecord(const CheckContext& context) {
  SignRequest filled;
  Fill(context, filled);
  for (const Guard guard : {Guard::kAfter, Guard::kBefore}) {
    Finding finding = TryBoth(
        context, guard,
        [&](const SignRequest& request, const SignCall&) { Fill(context, request); },
        [&](const SignRequest& request, const SignCall&, int) -> std::string {
          if (!request.IsPatternWhole()) {
            return "wrote outside the request, which has " + std::to_string(sizeof(Args)) +
                   " bytes.";
          }
          const bool is_same = std::memcmp(request.Get(), filled.Get(), sizeof(Args)) == 0;
          return is_same ? "" : "changed the request, which is const: work on a copy.";
        });
    if (finding.outcome != CheckOutcome::kPassed) return finding;
  }
  return Passed();
}

Finding SignSurroundings(const CheckContext& context) {
  std::optional<Surroundings> before;
  return TryBoth(
      context, Guard::kNone,
      [&](const SignRequest& request, const SignCall&) {
        Fill(context, request);
        // Now it is loaded; what loading changes is another check's.
        if (!before) before.emplace();
      },
      [&](const SignRequest&, const SignCall&, int) -> std::string {
        const std::vector<std::string> differences = before->Differences();
        if (differences.empty()) return "";
        return "left a change: " + Listed(differences) + ". Put back what a call changes.";
      });
}

}  // namespace line::checks
