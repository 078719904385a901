// SPDX-License-Identifier: MIT
//
// A plug-in that cannot be used: the result names what is wrong with it, and says what to do.
#include <cstdio>
#include <functional>
#include <ostream>
#include <string>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

// A copy of a library with one byte changed.
std::string Changed(const LineTool& line, const std::string& library, std::size_t at, char byte) {
  std::string bytes = ReadWholeFile(library);
  bytes.at(at) = byte;
  GivenFile(line / "changed", bytes);
  return line / "changed";
}

std::string TextFile(const LineTool& line) {
  GivenFile(line / "text", "not a library\n");
  return line / "text";
}

// A worker has more descriptors than zvisp, for which the recording plug-ins have a limit.
RunResult ResultOf(const LineTool& line, const std::string& name, const LineTool::Words& words) {
  Command command = line.Line(name, {}, words);
  command.environment.erase("ZVISP_RECORD_DESCRIPTORS");
  return RunCommand(command);
}

struct Case {
  const char* name;
  std::function<std::string(const LineTool&)> library;
  const char* says;  // after the path
};

void PrintTo(const Case& one, std::ostream* out) {
  *out << one.name;
}

// Offset of the machine's number in an ELF file.
constexpr std::size_t kMachine = 18;
constexpr char kSparc = 43;

const char* const kExport =
    "; define each in a source that includes plugin/zvisp_plugin.h, which exports it with C "
    "linkage";

const Case kCases[] = {
    {"OneExport", [](const LineTool&) { return TestPlugin("recording_isp_lacks_DumpFlash"); },
     " does not export DumpFlash; define each in a source that includes"},
    {"EveryExport", [](const LineTool&) { return TestPlugin("recording_sign"); },
     " does not export IspFlash, SetCommInterface, RecordFWVersion, GetKeyFromFlash, "
     "SetUIFunction and DumpFlash; define"},
    {"Architecture",
     [](const LineTool& line) { return Changed(line, ZVISP_SIMULATOR, kMachine, kSparc); },
     " is an ELF library for machine 43, but this program needs an ELF library for "},
    {"Library", TextFile, " is not a library; put an ELF library for "},
    {"Dependency", [](const LineTool&) { return TestPlugin("needs_absent"); },
     " needs the library libabsent_of_tests.so, which is not found; install that library"},
    {"Symbol", [](const LineTool&) { return TestPlugin("needs_symbol"); },
     " is refused by the loader: undefined symbol: NobodyHasThisSymbol; link the library"},
};

class APluginWithout : public testing::TestWithParam<Case> {};

TEST_P(APluginWithout, WhatItNeedsIsNamed) {
  LineTool line;
  line.Tool().WithIspPlugin(GetParam().library(line));
  GivenFirmware(line / "fw.bin", 1000);
  const LineTool::Words words = {"--isp", "--fw", "fw.bin", "--comm", "3"};
  const std::string says = line.Tool().IspPluginPath() + GetParam().says;

  const RunResult run = ResultOf(line, "run", words);
  const std::string result = EventOf(run.out, "result");
  EXPECT_EQ(run.status, 3) << run.out << run.err;
  EXPECT_EQ(FieldOf(result, "outcome"), "unavailable");
  EXPECT_EQ(FieldOf(result, "state"), "untouched");
  EXPECT_THAT(FieldOf(result, "meaning"),
              StartsWith("the ISP plug-in could not be loaded: " + says));
  EXPECT_THAT(line.Record(), HasSubstr(says));

  const RunResult readback = ResultOf(line, "readback", words);
  const std::string read = EventOf(readback.out, "result");
  EXPECT_EQ(readback.status, 3) << readback.out << readback.err;
  EXPECT_EQ(FieldOf(read, "outcome"), "unavailable");
  EXPECT_THAT(FieldOf(read, "meaning"), HasSubstr(says));
}

INSTANTIATE_TEST_SUITE_P(Line, APluginWithout, testing::ValuesIn(kCases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(APlugin, ThatIsMissingIsNamedWithItsPlace) {
  LineTool line;
  std::remove(line.Tool().IspPluginPath().c_str());
  const RunResult run =
      ResultOf(line, "run", {"--dumpflash", "--dumpaddr", "0", "--dumplen", "16"});
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "meaning"),
            "the ISP plug-in could not be loaded: " + line.Tool().IspPluginPath() +
                " is missing; put the plug-in there, or give the right path");
}

TEST(APlugin, ThatLacksTheCallOfAnActionIsToldWhich) {
  LineTool line;
  line.Tool().WithIspPlugin(TestPlugin("recording_isp_only_required"));
  const RunResult run = ResultOf(line, "run", {"--resetmcu", "--comm", "3"});
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "meaning"),
            "the ISP plug-in does not export ResetMCUExport, the call of this action; use a "
            "plug-in that has it");
}

TEST(APlugin, ForSignaturesIsNamedAsWell) {
  LineTool line;
  line.Tool().WithSignPlugin(TestPlugin("recording_sign_lacks_SignFwExport"));
  GivenFirmware(line / "fw.bin", 1000);
  GivenFile(line / "fw.sig", "signature");
  const RunResult run = ResultOf(line, "run",
                                 {"--isp", "--fw", "fw.bin", "--sw", "--dsmode", "2", "--keypair",
                                  "0", "--signfile", "fw.sig"});
  EXPECT_EQ(run.status, 3) << run.out;
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "meaning"),
            "the signature plug-in could not be loaded: " + line.Tool().SignPluginPath() +
                " does not export SignFwExport" + kExport);
}

TEST(APlugin, WhoseOwnCodeIsThatOfAMissingOneIsNotSaidToBeMissing) {
  LineTool line;
  line.Tool().WithIspPlugin(TestPlugin("recording_isp"));
  Command command = line.Line("run", {}, {"--resetmcu", "--comm", "3"});
  command.environment.erase("ZVISP_RECORD_DESCRIPTORS");
  command.environment["ZVISP_RECORD_RESULT_ResetMCUExport"] = "6";
  const RunResult run = RunCommand(command);
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "code"), "6");
  EXPECT_EQ(FieldOf(EventOf(run.out, "result"), "meaning"), "the plug-in reports a failure");
}

}  // namespace
