// SPDX-License-Identifier: MIT
#include "line/worker/worker.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/execute_process.h"
#include "base/string_util.h"
#include "base/transform.h"
#include "cmdline/isp_args_parse.h"
#include "line/job/sha256.h"
#include "line/worker/guarded_setting.h"
#include "line/worker/last_words.h"
#include "line/worker/messages.h"
#include "line/worker/parent_link.h"
#include "line/worker/plugin_load.h"
#include "plugin/comm_plugin.h"
#include "plugin/fresh_setting.h"

using namespace zvisp;

namespace line {

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

// What is to be recorded when the parent is lost from now on.
struct Ending {
  Verdict verdict;
  std::optional<std::uint32_t> code;
};

// What the callbacks of the plug-in, which have no argument for it, have to reach.
ParentLink* g_parent = nullptr;
GoMessage g_go;
CallTrace g_trace;
bool g_called = false;           // since the last Execute
std::optional<Ending> g_ending;  // of the action, once it has returned

[[noreturn]] void End() {
  std::fflush(nullptr);
  // No destructors and no handlers at exit: those of a plug-in might hang or crash, and the result
  // is known.
  _exit(0);
}

// The parent is gone. Where the action has not returned, what was called is all that is known.
[[noreturn]] void EndAlone() {
  const Verdict missing = JudgeMissingResult(g_trace, Outcome::kInterrupted, kParentGone);
  const Ending ending = g_ending.value_or(Ending{missing, {}});
  RecordLastWords(g_go, ending.verdict, ending.code);
  End();
}

// After a plug-in's fork that returned, there are two of us.
void EndSecondProcess() {
  if (!g_parent->IsParentsChild()) _exit(0);
}

template <typename Message>
std::optional<Message> Receive() {
  const std::optional<Frame> frame = g_parent->Receive();
  return frame ? Decode<Message>(*frame) : std::nullopt;
}

void BeforeCall(const char* name) {
  EndSecondProcess();
  const bool asked = g_parent->Send(Encode(CallMessage{name}));
  const auto answer = asked ? Receive<MayCallMessage>() : std::nullopt;
  if (!answer) {
    // The plug-in has not been called, whatever the parent has recorded meanwhile.
    EndAlone();
  }
  // The parent reports why.
  if (!answer->may) End();
  g_trace.Begin(name);
  g_called = true;
}

void OnProgress(int percent) {
  if (g_parent->IsParentsChild()) g_parent->SendOrDrop(Encode(ProgressMessage{percent}));
}

void OnMessage(wchar_t* text) {
  if (text == nullptr || !g_parent->IsParentsChild()) return;
  TextMessage message;
  // A quarter of the bytes, because a character may take four of them.
  const std::wstring_view whole(text);
  const std::wstring_view kept = whole.substr(0, kLongestText / 4);
  message.text = CCpTransform().ConvertUnicodeStringToUTF8(std::wstring(kept));
  message.truncated = kept.size() < whole.size();
  g_parent->SendOrDrop(Encode(message));
}

// The first text is the name that begins the scanner's messages, as it does in zvisp.
JudgedWords Judge(std::vector<std::string> texts) {
  std::vector<char*> argv;
  argv.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    argv.push_back(text.data());
  }
  argv.push_back(nullptr);
  JudgedWords words;
  CCpIspArgsParse parser;
  words.accepted =
      parser.ParseArgs(static_cast<int>(argv.size() - 1), argv.data(), words.args) != 0;
  words.slots = parser.GetSlots();
  words.setting = MakeFreshCopy(parser.GetISPCmdSetting());
  words.sign_args = MakeZeroed<SignArgs>();
  if (words.setting == nullptr || words.sign_args == nullptr) _exit(1);
  CopyBytes(*words.sign_args, parser.GetDigitalSignArgs());
  std::fflush(stdout);
  return words;
}

std::uint32_t Execute(Setting* setting, SignArgs* sign_args) {
  CCpZvString directory;
  directory = g_go.plugin_directory;
  g_pstISPSetting = setting;
  g_pstDigitalSignArgs = sign_args;
  g_called = false;
  return ExecuteProcessFrom(directory, setting, sign_args, CCpZvString(L"PlugIn/libIsp.dylib"),
                            CCpZvString(L"libSignVerify.dylib"), nullptr);
}

ResultMessage ResultOf(std::uint32_t code, const Setting& setting) {
  const bool may_be_missing = !g_called;
  return {
      code,
      may_be_missing ? ExplainNotLoaded(code, setting.enumActionType, g_go.plugin_directory) : "",
      ""};
}

Wanted WantedOf(const GoMessage& go) {
  Wanted wanted;
  wanted.nothing_written = go.nothing_written;
  if (go.has_expected) wanted.scaler_type = go.expected;
  return wanted;
}

// The first file that is not what was checked; empty for none.
std::string ChangedFile() {
  for (std::size_t i = 0; i < g_go.checked_files.size() && i < g_go.checked_sha256.size(); ++i) {
    const std::string& file = g_go.checked_files[i];
    if (Sha256OfFile(file) != g_go.checked_sha256[i]) return file;
  }
  return "";
}

// Sends the result of the action, or records it where nobody listens any more.
void Program(Setting* setting, SignArgs* sign_args) {
  ResultMessage result;
  result.changed_file = ChangedFile();
  if (result.changed_file.empty()) {
    const std::uint32_t code = Execute(setting, sign_args);
    EndSecondProcess();
    std::fflush(nullptr);
    result = ResultOf(code, *setting);
    result.changed_file = ChangedFile();
  }
  Verdict verdict = JudgeResult(g_trace, result, WantedOf(g_go));
  if (verdict.outcome == Outcome::kPassed && g_go.reads_back) {
    verdict.outcome = Outcome::kInterrupted;
    verdict.meaning = std::string("not read back: ") + kParentGone;
  }
  g_ending = {verdict, result.code};
  if (!g_parent->Send(Encode(result))) EndAlone();
}

// Reads a range of the flash with the run's own interface, slave and channel.
void Dump(const Setting& of_run, const DumpMessage& dump) {
  const auto setting = MakeFreshSetting();
  if (setting == nullptr) _exit(1);
  setting->enumActionType = CP_ISPTOOL_ACTION_DUMP_FLASH;
  setting->enumCommID = of_run.enumCommID;
  setting->bAutoSlaveAddr = of_run.bAutoSlaveAddr;
  setting->ucSlaveAddr = of_run.ucSlaveAddr;
  setting->bIspChannel = of_run.bIspChannel;
  setting->enumIspMode = ISP_MODE_NORMAL;
  setting->stDumpFlash.ulDumpAddr = dump.address;
  setting->stDumpFlash.ulDumpLen = dump.length;
  const std::wstring file = CCpTransform().ConvertUTF8StringToUnicode(dump.file);
  CopyWideToBuffer(file, kPathCapacity - 1, setting->stDumpFlash.wszDumpFile, kPathCapacity);
  CopyWideToBuffer(of_run.wszSettingFilePath, kPathCapacity - 1, setting->wszSettingFilePath,
                   kPathCapacity);
  SignArgs no_signature;
  const std::uint32_t code = Execute(setting.get(), &no_signature);
  EndSecondProcess();
  std::fflush(nullptr);
  g_parent->Send(Encode(ResultOf(code, *setting)));
}

// What the parent asks for after the result, until it says Bye.
void ServeReadBack(const Setting& of_run) {
  for (;;) {
    const std::optional<Frame> frame = g_parent->Receive();
    if (!frame) EndAlone();
    if (frame->type == MessageType::kBye) return;
    const auto dump = Decode<DumpMessage>(*frame);
    if (!dump) return;
    Dump(of_run, *dump);
  }
}

// Not to be left by an exception of a plug-in: that is a crash, as it is in zvisp.
void Work() noexcept {
  Setting* const setting = MakeGuardedSetting();
  SignArgs sign_args;
  if (setting == nullptr || !UnpackSetting(g_go.setting, *setting) ||
      g_go.sign_args.size() != sizeof sign_args) {
    _exit(1);
  }
  std::memcpy(static_cast<void*>(&sign_args), g_go.sign_args.data(), sizeof sign_args);
  // Known before the plug-in can change the record.
  g_trace.edp_mode = setting->enumEdpIspMode;
  const ZeroedPtr<Setting> of_run = MakeFreshCopy(*setting);
  if (of_run == nullptr) _exit(1);
  g_funcReturnProg = OnProgress;
  g_funcShowMsg = OnMessage;
  g_funcBeforeIspCall = BeforeCall;
  if (!g_go.reads_only) Program(setting, &sign_args);
  ServeReadBack(*of_run);
}

// Judges what the parent asks for, until it sends what is to be run.
void WaitForGo(const char* name) {
  for (;;) {
    const std::optional<Frame> frame = g_parent->Receive();
    if (!frame) End();
    if (auto words = Decode<WordsMessage>(*frame)) {
      words->words.insert(words->words.begin(), name);
      if (!g_parent->Send(EncodeJudged(Judge(std::move(words->words))))) End();
    } else if (auto go = Decode<GoMessage>(*frame)) {
      // Without the lock there is no run, whatever became of the parent.
      if (g_parent->KeptFiles() == 0) End();
      g_go = std::move(*go);
      return;
    } else if (frame->type != MessageType::kLock) {
      End();
    }
  }
}

}  // namespace

int RunWorker(const char* name) {
  signal(SIGPIPE, SIG_IGN);
  ParentLink parent(kWorkerSocket);
  // Every way out of here ends the process.
  // cppcheck-suppress danglingLifetime
  g_parent = &parent;
  // As in zvisp, whose process has one.
  const CZvComm comm;
  WaitForGo(name);
  Work();
  End();
}

}  // namespace line
