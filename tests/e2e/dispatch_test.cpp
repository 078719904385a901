// SPDX-License-Identifier: MIT
//
// Which call of the plug-in an action makes, and what a run says and returns for it.
#include "support/end_to_end.h"

namespace {

using testing::ElementsAre;

constexpr const char* kCallbacks = "SetUIFunction null null null";

// clang-format off
struct ActionRow {
  const char* keyword;
  Words parameters;  // what the action cannot be accepted without
  const char* call;
};

const ActionRow kCallingActions[] = {
  // keyword          parameters                              call
  {"isp",             {"--fw", "a.bin"},                      "IspFlash"},
  {"ispuser",         {"--fw", "a.bin"},                      "IspFlash"},
  {"ispdiff",         {"--fw", "a.bin"},                      "IspFlash"},
  {"ispcopy",         {"--fw", "a.bin"},                      "IspFlash"},
  {"recordver",       {},                                     "RecordFWVersion"},
  {"dumpflash",       {"--dumpaddr", "0", "--dumplen", "1"},  "DumpFlash"},
  {"userdefinedinfo", {},                                     "GetUserDefinedInfoFromDDCCI"},
  {"edpisp",          {},                                     "IspEeprom"},
  {"enterispmode",    {},                                     "EnterISPModeExport"},
  {"resetmcu",        {},                                     "ResetMCUExport"},
};

const ActionRow kUnboundActions[] = {
  // keyword              parameters                  call
  {"erase",               {},                         "ChipEraseFlash"},
  {"getstatus",           {},                         "GetFWInfo"},
  {"mergefwinfo",         {"--read"},                 "GetMergeFwInfo"},
  {"mergefwinfo",         {"--write", "1.2"},         "SetMergeFwInfo"},
  {"senduserdefinedinfo", {},                         "SendUserDefinedInfo"},
  {"i2cwrite",            {"--writedata", "1,2,3"},   "I2CWriteExport"},
};
// clang-format on

constexpr const char* kSilentActions[] = {"srstatus", "flashtype",     "readsr",
                                          "writesr",  "readsafeguard", "writesafeguard"};

class Dispatch : public EndToEnd {
 protected:
  Dispatch() { GivenFirmware(m_tool / "a.bin", 100); }

  static Words Line(const ActionRow& row) {
    Words words = {std::string("--") + row.keyword};
    words.insert(words.end(), row.parameters.begin(), row.parameters.end());
    return words;
  }
};

TEST_F(Dispatch, EveryBoundActionMakesItsOneCallAfterTheCallbacks) {
  for (const ActionRow& row : kCallingActions) {
    ExpectSuccess(Line(row));
    EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, row.call)) << row.keyword;
  }
}

TEST_F(Dispatch, TheResultOfEachCallIsPrintedInHexAndBecomesTheStatus) {
  for (const ActionRow& row : kCallingActions) {
    Command command = m_tool.Line(Line(row));
    command.environment[std::string("ZVISP_RECORD_RESULT_") + row.call] = "0xABCD12";
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + FailLine("0xABCD12")) << row.keyword;
    EXPECT_EQ(run.status, 0x12) << row.keyword;
  }
}

TEST_F(Dispatch, ActionsWithoutACallSucceedWithoutTouchingTheDevice) {
  for (const char* keyword : kSilentActions) {
    ExpectSuccess({std::string("--") + keyword});
    EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks)) << keyword;
  }
}

TEST_F(Dispatch, ActionsThatAreNeverBoundEndWithSixEvenWhenThePluginHasTheirCall) {
  m_tool.WithIspPlugin(TestPlugin("recording_isp_with_never_bound"));
  for (const ActionRow& row : kUnboundActions) {
    ExpectRun(Line(row), kBanner + FailLine("0x6"), 6);
    EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks)) << row.keyword;
  }
}

TEST_F(Dispatch, ActionsWhoseOptionalCallIsMissingEndWithSix) {
  m_tool.WithIspPlugin(TestPlugin("recording_isp_only_required"));
  for (const char* keyword : {"userdefinedinfo", "edpisp", "enterispmode", "resetmcu"}) {
    ExpectRun({std::string("--") + keyword}, kBanner + FailLine("0x6"), 6);
  }
  ExpectRun({"--getscalertype"}, kBanner + ScalerTypeLine("6"), 6);
  EXPECT_THAT(m_tool.TakeCallLines(),
              ElementsAre(kCallbacks, kCallbacks, kCallbacks, kCallbacks, kCallbacks));
}

TEST_F(Dispatch, TheScalerTypeIsPrintedInGreenWhateverItsValueAndIsTheStatus) {
  // clang-format off
  const struct { const char* result; const char* printed; int status; } kCases[] = {
    {"0", "0", 0}, {"3", "3", 3}, {"256", "256", 0}, {"3431", "3431", 103}, {"-1", "-1", 255},
  };
  // clang-format on
  for (const auto& row : kCases) {
    Command command = m_tool.Line({"--getscalertype"});
    command.environment["ZVISP_RECORD_RESULT_GetScalerType"] = row.result;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + ScalerTypeLine(row.printed));
    EXPECT_EQ(run.status, row.status) << row.result;
  }
}

TEST_F(Dispatch, ThePluginIsUnloadedBeforeTheOutcomeIsPrinted) {
  Command command = m_tool.Line({"--resetmcu"});
  command.environment["ZVISP_RECORD_UNLOAD"] = "unloaded\n";
  EXPECT_EQ(RunCommand(command).out, std::string(kBanner) + "unloaded\n" + kSuccess);
}

}  // namespace
