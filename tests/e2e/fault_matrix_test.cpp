// SPDX-License-Identifier: MIT
//
// Everything that can go wrong around a run, one row each: what the plug-in is, what it does, how
// and where the tool is started, and where its output goes.
#include <dlfcn.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <map>

#include "support/end_to_end.h"
#include "support/record_offsets.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCallbacks = "SetUIFunction null null null";

// Both plug-ins, firmware in the working directory, and a command line for every call.
class FaultMatrix : public EndToEnd {
 protected:
  FaultMatrix() {
    m_tool.WithSignPlugin(TestPlugin("recording_sign"));
    GivenFirmware(m_tool / "a.bin", 1);
    GivenFile(m_tool / "a.sig", "signature");
  }
};

// What a call returned, what the tool makes of it.
// clang-format off
struct ResultRow {
  const char* result;
  const char* hex;      // as printed; null for success
  const char* decimal;  // as printed for a scaler type
  int status;
};

constexpr ResultRow kResults[] = {
  // result       hex            decimal         status
  {"0",           nullptr,       "0",            0},
  {"1",           "0x1",         "1",            1},
  {"6",           "0x6",         "6",            6},
  {"255",         "0xFF",        "255",          255},
  {"256",         "0x100",       "256",          0},
  {"3431",        "0xD67",       "3431",         103},
  {"0x80000000",  "0x80000000",  "-2147483648",  0},
  {"-1",          "0xFFFFFFFF",  "-1",           255},
};

struct CallRow {
  const char* call;
  Words words;
};

const CallRow kIspCalls[] = {
  {"IspFlash",                    {"--isp", "--fw", "a.bin"}},
  {"RecordFWVersion",             {"--recordver"}},
  {"DumpFlash",                   {"--dumpflash", "--dumpaddr", "0", "--dumplen", "1"}},
  {"GetUserDefinedInfoFromDDCCI", {"--userdefinedinfo"}},
  {"IspEeprom",                   {"--edpisp"}},
  {"EnterISPModeExport",          {"--enterispmode"}},
  {"ResetMCUExport",              {"--resetmcu"}},
};

struct SignCallRow {
  const char* call;
  Words words;
  const char* failure;
  int status;
};

const SignCallRow kSignCalls[] = {
  {"SignFwExport", {"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin"}, "0x4002", 2},
  {"VerifySignatureExport",
   {"--verify", "--sw", "--dsmode", "2", "--fw", "a.bin", "--signfile", "a.sig"}, "0x4003", 3},
};
// clang-format on

std::string OutcomeOf(const ResultRow& row) {
  return row.hex == nullptr ? kSuccess : FailLine(row.hex);
}

TEST_F(FaultMatrix, EveryCallWithEveryResult) {
  for (const CallRow& call : kIspCalls) {
    for (const ResultRow& row : kResults) {
      Command command = m_tool.Line(call.words);
      command.environment["ZVISP_RECORD_RESULT_"s + call.call] = row.result;
      const RunResult run = RunCommand(command);
      EXPECT_EQ(run.out, kBanner + OutcomeOf(row)) << call.call << " gives " << row.result;
      EXPECT_EQ(run.status, row.status) << call.call << " gives " << row.result;
      EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, call.call));
    }
  }
}

TEST_F(FaultMatrix, TheScalerTypeWithEveryResult) {
  for (const ResultRow& row : kResults) {
    Command command = m_tool.Line({"--getscalertype"});
    command.environment["ZVISP_RECORD_RESULT_GetScalerType"] = row.result;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + ScalerTypeLine(row.decimal));
    EXPECT_EQ(run.status, row.status) << row.result;
  }
}

TEST_F(FaultMatrix, TheKeyOfTheDeviceWithEveryResult) {
  for (const ResultRow& row : kResults) {
    Command command =
        m_tool.Line({"--isp", "--sw", "--dsmode", "4", "--fw", "a.bin", "--signfile", "a.sig"});
    command.environment["ZVISP_RECORD_RESULT_GetKeyFromFlash"] = row.result;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + "Get Key From Flash ...\n"s + OutcomeOf(row));
    EXPECT_EQ(run.status, row.status) << row.result;
    EXPECT_EQ(m_tool.TakeCalls().size(), row.hex == nullptr ? 4u : 2u) << row.result;
  }
}

TEST_F(FaultMatrix, TheSignaturePluginsCallsWithEveryResult) {
  for (const SignCallRow& call : kSignCalls) {
    for (const ResultRow& row : kResults) {
      const bool fails = row.result == "0"s;
      Command command = m_tool.Line(call.words);
      command.environment["ZVISP_RECORD_RESULT_"s + call.call] = row.result;
      const RunResult run = RunCommand(command);
      EXPECT_EQ(run.out, kBanner + (fails ? FailLine(call.failure) : kSuccess)) << call.call;
      EXPECT_EQ(run.status, fails ? call.status : 0) << call.call << " gives " << row.result;
    }
  }
}

// A library in the place of a plug-in that the loader or the tool refuses.
struct LibraryRow {
  const char* what;
  const char* library;  // of the tests' own; null for a file that is none
};

constexpr LibraryRow kUnusableIspPlugins[] = {
    {"lacks IspFlash", "recording_isp_lacks_IspFlash"},
    {"lacks SetCommInterface", "recording_isp_lacks_SetCommInterface"},
    {"lacks RecordFWVersion", "recording_isp_lacks_RecordFWVersion"},
    {"lacks GetKeyFromFlash", "recording_isp_lacks_GetKeyFromFlash"},
    {"lacks SetUIFunction", "recording_isp_lacks_SetUIFunction"},
    {"lacks DumpFlash", "recording_isp_lacks_DumpFlash"},
    {"is the signature plug-in", "recording_sign"},
};

TEST_F(FaultMatrix, EveryActionOfTheDeviceRefusesAPluginThatLacksARequiredCall) {
  for (const LibraryRow& row : kUnusableIspPlugins) {
    m_tool.WithIspPlugin(TestPlugin(row.library));
    for (const CallRow& call : kIspCalls) {
      const RunResult run = m_tool.Run(call.words);
      EXPECT_EQ(run.out, kBanner + FailLine("0xD67")) << row.what << ", " << Shown(call.words);
      EXPECT_EQ(run.status, 103);
      EXPECT_THAT(m_tool.TakeCallLines(), IsEmpty());
    }
  }
}

// The machine of an ELF library is at bytes 18 and 19; 0xF3 is one that no test runs on.
std::string ForOtherMachine(std::string library) {
  library.at(18) = '\xF3';
  library.at(19) = '\0';
  return library;
}

TEST_F(FaultMatrix, AFileThatTheLoaderRefusesIsToldInItsWords) {
  const std::string library = ReadWholeFile(TestPlugin("recording_isp"));
  // clang-format off
  const std::map<std::string, std::string> files = {
      {"empty",                  ""},
      {"text",                   "this is no library\n"},
      {"cut short",              library.substr(0, 40)},
#ifdef __linux__
      {"another architecture",   ForOtherMachine(library)},
#endif
  };
  // clang-format on
  for (const auto& [what, content] : files) {
    GivenFile(m_tool.IspPluginPath(), content);
    ASSERT_EQ(dlopen(m_tool.IspPluginPath().c_str(), RTLD_NOW), nullptr) << what;
    const std::string message = dlerror();
    ExpectRun({"--resetmcu"}, kBanner + "dlopen - "s + message + "n" + FailLine("0xD67"), 103);
    EXPECT_THAT(m_tool.TakeCallLines(), IsEmpty()) << what;
  }
}

TEST_F(FaultMatrix, ADirectoryInThePlaceOfThePluginIsRefused) {
  std::filesystem::remove(m_tool.IspPluginPath());
  GivenDirectory(m_tool.IspPluginPath());
  const RunResult run = m_tool.Run({"--resetmcu"});
  EXPECT_THAT(run.out, testing::StartsWith(kBanner + "dlopen - "s));
  EXPECT_THAT(run.out, testing::EndsWith("n" + FailLine("0xD67")));
  EXPECT_EQ(run.status, 103);
}

// What a plug-in does besides answering.
struct BehaviourRow {
  const char* what;
  std::map<std::string, std::string> wishes;  // for the recording plug-in
  std::string printed;                        // after the banner
  int status;
  int signal;
};

const BehaviourRow kBehaviours[] = {
    {"overwrites the record", {{"FILL", "0xEE"}}, kSuccess, 0, 0},
    {"zeroes the record and fails",
     {{"FILL", "0"}, {"RESULT_ResetMCUExport", "9"}},
     FailLine("0x9"),
     9,
     0},
    {"turns the action into the scaler type's",
     {{"ACTION", "25"}, {"RESULT_ResetMCUExport", "3"}},
     ScalerTypeLine("3"),
     3,
     0},
    {"prints lines", {{"PRINT", "one\ntwo\n"}}, "one\ntwo\n"s + kSuccess, 0, 0},
    {"prints without a newline", {{"PRINT", "..."}}, "..."s + kSuccess, 0, 0},
    {"prints much",
     {{"PRINT", std::string(100000, 'x')}},
     std::string(100000, 'x') + kSuccess,
     0,
     0},
    {"prints and fails",
     {{"PRINT", "no answer\n"}, {"RESULT_ResetMCUExport", "7"}},
     "no answer\n" + FailLine("0x7"),
     7,
     0},
    {"reads wild memory", {{"CRASH", "11"}}, "", -1, SIGSEGV},
    {"aborts", {{"CRASH", "6"}}, "", -1, SIGABRT},
    {"prints and is killed",
     {{"CRASH", "9"}, {"PRINT", "last words\n"}},
     "last words\n",
     -1,
     SIGKILL},
};

TEST_F(FaultMatrix, EveryBehaviourOfAPluginIsSurvivedOrSeen) {
  for (const BehaviourRow& row : kBehaviours) {
    Command command = m_tool.Line({"--resetmcu"});
    for (const auto& [name, value] : row.wishes)
      command.environment["ZVISP_RECORD_" + name] = value;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + row.printed) << row.what;
    EXPECT_EQ(run.err, "") << row.what;
    EXPECT_EQ(run.status, row.status) << row.what;
    EXPECT_EQ(run.signal, row.signal) << row.what;
    EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "ResetMCUExport")) << row.what;
  }
}

TEST_F(FaultMatrix, AShellSeesTheSignalOfACrashedPlugin) {
  Command command =
      m_tool.Line({"-c", "\"$0\" --resetmcu 2>/dev/null; echo status $?", m_tool.Executable()});
  command.program = "/bin/sh";
  command.environment["ZVISP_RECORD_CRASH"] = "15";
  EXPECT_EQ(RunCommand(command).out, kBanner + "status 143\n"s);
}

// Ways to the executable.
class Start : public FaultMatrix {
 protected:
  // Runs --isp on a relative file; expects the plug-in and the settings file next to the real
  // executable and the file in the working directory.
  void ExpectWholeRun(Command command) {
    command.arguments.insert(command.arguments.end(), {"--isp", "--fw", "a.bin"});
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + std::string(kSuccess));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(
        SameBytes(m_tool.TakeRecord(), PlainCommandSetting(4, m_tool.ToolDir())
                                           .PutU32(setting_at::ulCount, 1)
                                           .PutWide(setting_at::wszPath, m_tool / "a.bin")));
  }
};

TEST_F(Start, ThroughASymbolicLinkThePluginsBesideTheRealExecutableCount) {
  ASSERT_EQ(symlink(m_tool.Executable().c_str(), (m_tool / "link").c_str()), 0);
  GivenFile(m_tool / "PlugIn/libIsp.dylib", "this is no library");
  Command command = m_tool.Line({});
  command.program = m_tool / "link";
  ExpectWholeRun(command);
}

TEST_F(Start, ThroughALinkedDirectoryTheRealDirectoryCounts) {
  const std::string link = m_tool.Elsewhere("linked");
  ASSERT_EQ(symlink(m_tool.ToolDir().c_str(), link.c_str()), 0);
  Command command = m_tool.Line({});
  command.program = link + "/zvisp";
  ExpectWholeRun(command);
}

TEST_F(Start, ByARelativePath) {
  Command command = m_tool.Line({});
  command.program = "../bin/zvisp";
  ExpectWholeRun(command);
}

TEST_F(Start, BySearchInThePath) {
  Command command = m_tool.Line({"-c", "PATH=\"$0:$PATH\" exec zvisp \"$@\"", m_tool.ToolDir()});
  command.program = "/bin/sh";
  ExpectWholeRun(command);
}

TEST_F(Start, UnderAnyNameOfItsOwn) {
  for (const char* name : {"/nowhere/else", "-", "%s%n", "\xFF"}) {
    Command command = m_tool.Line({});
    command.name = name;
    ExpectWholeRun(command);
  }
}

TEST_F(Start, FromADeletedDirectoryWhatNeedsNoDirectoryWorks) {
  Command command = m_tool.Line({"--isp", "--fw", m_tool / "a.bin"});
  command.directory = GivenDirectory(m_tool.Elsewhere("gone"));
  command.directory_vanishes = true;
  EXPECT_EQ(RunCommand(command).out, kBanner + std::string(kSuccess));
}

TEST_F(Start, FromADeletedDirectoryARelativeFileIsRefused) {
  Command command = m_tool.Line({"--isp", "--fw", "a.bin"});
  command.directory = GivenDirectory(m_tool.Elsewhere("gone"));
  command.directory_vanishes = true;
  const RunResult run = RunCommand(command);
  EXPECT_THAT(run.out, testing::StartsWith("File open fail! "));
  EXPECT_THAT(run.out, testing::EndsWith("\n"s + kRejected));
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(m_tool.TakeCallLines(), IsEmpty());
}

TEST_F(Start, WithoutTheUsualVariables) {
  Command command = m_tool.Line({});
  for (const char* name : {"PATH", "HOME", "PWD", "TMPDIR", "LC_ALL"})
    command.environment[name] = std::nullopt;
  ExpectWholeRun(command);
}

// Locales, and whether a name that is not ASCII can be handed to the loader in them.
struct LocaleRow {
  const char* what;
  std::map<std::string, std::optional<std::string>> variables;
  bool knows_names;
};

const LocaleRow kLocales[] = {
    {"UTF-8", {{"LC_ALL", "C.UTF-8"}}, true},
    {"UTF-8 by LANG", {{"LC_ALL", std::nullopt}, {"LANG", "C.UTF-8"}}, true},
    {"non-existing", {{"LC_ALL", "xx_YY.UTF-8"}}, true},
    {"non-existing by LANG", {{"LC_ALL", std::nullopt}, {"LANG", "nonsense"}}, true},
    {"unset", {{"LC_ALL", std::nullopt}}, false},
    {"C", {{"LC_ALL", "C"}}, false},
    {"POSIX", {{"LC_ALL", "POSIX"}}, false},
};

TEST(StartInALocale, AToolWithAnAsciiPathWorksOnFilesOfAnyName) {
  Installation tool;
  tool.WithIspPlugin(TestPlugin("recording_isp"));
  GivenFirmware(tool / "f\u00FCr \u4E2D\U0001F4BE.bin", 1);
  for (const LocaleRow& row : kLocales) {
    Command command = tool.Line({"--isp", "--fw", "f\u00FCr \u4E2D\U0001F4BE.bin"});
    for (const auto& [name, value] : row.variables)
      command.environment[name] = value;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + std::string(kSuccess)) << row.what;
    EXPECT_EQ(run.status, 0) << row.what;
    EXPECT_TRUE(SameBytes(tool.TakeRecord(), PlainCommandSetting(4, tool.ToolDir())
                                                 .PutU32(setting_at::ulCount, 1)
                                                 .PutWide(setting_at::wszPath,
                                                          tool / "f\u00FCr \u4E2D\U0001F4BE.bin")))
        << row.what;
  }
}

TEST(StartInALocale, AToolWhosePathIsNotAsciiWorksWhereTheLocaleKnowsIt) {
  Installation tool("f\u00FCr \u4E2D\U0001F4BE");
  tool.WithIspPlugin(TestPlugin("recording_isp"));
  for (const LocaleRow& row : kLocales) {
    if (!row.knows_names) continue;
    Command command = tool.Line({"--resetmcu"});
    for (const auto& [name, value] : row.variables)
      command.environment[name] = value;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + std::string(kSuccess)) << row.what;
    EXPECT_TRUE(SameBytes(tool.TakeRecord(), PlainCommandSetting(15, tool.ToolDir()))) << row.what;
  }
}

#ifdef __linux__
// A library of the plug-in's name waits wherever a bare name could lead.
TEST(StartInALocale, AToolWhosePathTheLocaleCannotTellLoadsNothingAtAll) {
  Installation tool("f\u00FCr");
  tool.WithIspPlugin(TestPlugin("recording_isp"));
  const std::string library = ReadWholeFile(TestPlugin("recording_isp"));
  GivenFile(tool / "PlugIn/libIsp.dylib", library);
  for (const LocaleRow& row : kLocales) {
    if (row.knows_names) continue;
    Command command = tool.Line({"--resetmcu"});
    for (const auto& [name, value] : row.variables)
      command.environment[name] = value;
    command.environment["LD_LIBRARY_PATH"] = tool.WorkDir() + ":" + tool.WorkDir() + "/PlugIn";
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner +
                           "dlopen - the plug-in's path cannot be told in the locale's encodingn"s +
                           FailLine("0xD67"))
        << row.what;
    EXPECT_EQ(run.status, 103) << row.what;
    EXPECT_THAT(tool.TakeCallLines(), IsEmpty()) << row.what;
  }
}
#endif

// Output that goes nowhere: the device is programmed all the same, and the status tells how.
struct OutputRow {
  const char* what;
  OutputTo output;
};

TEST_F(FaultMatrix, OutputThatIsClosedOrOnAFullDiskDoesNotChangeTheRun) {
  std::vector<OutputRow> outputs = {{"closed", OutputTo::kClosed}};
  if (FileExists("/dev/full")) outputs.push_back({"full disk", OutputTo::kFullDisk});
  for (const OutputRow& row : outputs) {
    for (const ResultRow& result : kResults) {
      Command command = m_tool.Line({"--resetmcu"});
      command.output = row.output;
      command.environment["ZVISP_RECORD_RESULT_ResetMCUExport"] = result.result;
      const RunResult run = RunCommand(command);
      EXPECT_EQ(run.err, "") << row.what;
      EXPECT_EQ(run.status, result.status) << row.what << ", " << result.result;
      const std::vector<Call> calls = m_tool.TakeCalls();
      ASSERT_EQ(calls.size(), 2u) << row.what;
      EXPECT_TRUE(
          SameBytes(RecordBytes(calls[1].record), PlainCommandSetting(15, m_tool.ToolDir())))
          << row.what;
    }
  }
}

}  // namespace
