// SPDX-License-Identifier: MIT
//
// check-plugin, held against plug-ins that are wrong in one point each: that row fails, and no
// other one does.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using testing::SizeIs;

class CheckPlugin : public testing::Test {
 protected:
  Command LineOf(const std::string& plugin, const std::string& fault,
                 const LineTool::Words& options) const {
    LineTool::Words words = {"check-plugin", "--json", plugin};
    words.insert(words.end(), options.begin(), options.end());
    Command command = m_line.LineOf(words);
    command.environment["ZVISP_FAULT"] = fault;
    return command;
  }

  RunResult Check(const std::string& plugin, const std::string& fault = "",
                  const LineTool::Words& options = {"--with-device"}) const {
    return RunCommand(LineOf(plugin, fault, options));
  }

  // The rows with an outcome, by their ids.
  static std::vector<std::string> Rows(const RunResult& run, const std::string& outcome) {
    std::vector<std::string> ids;
    for (const std::string& row : EventsOf(run.out, "check")) {
      if (FieldOf(row, "outcome") == outcome) ids.push_back(FieldOf(row, "id"));
    }
    return ids;
  }

  static std::string TextOf(const RunResult& run, const std::string& id) {
    for (const std::string& row : EventsOf(run.out, "check")) {
      if (FieldOf(row, "id") == id) return FieldOf(row, "text");
    }
    return "no such row";
  }

  LineTool m_line;
};

struct Fault {
  const char* plugin;
  const char* name;
  const char* row;   // that fails
  const char* text;  // in it
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.plugin << " " << fault.name;
}

constexpr const char* kIsp = "faulty_isp";
constexpr const char* kSigner = "faulty_signer";

// clang-format off
const Fault kFaults[] = {
  // plugin  fault               row                  text
  {kIsp,    "load-crash",        "loads",             "signal 11 (Segmentation fault) in loading"},
  {kIsp,    "load-abort",        "loads",             "signal 6 (Aborted) in loading"},
  {kIsp,    "load-throw",        "loads",             "signal 6 (Aborted) in loading"},
  {kIsp,    "load-exit",         "loads",             "exit status 0 in loading"},
  {kIsp,    "load-exit-at-once", "loads",             "exit status 0 in loading"},
  {kIsp,    "load-hang",         "loads",             "not return within 2 seconds from loading"},
  {kSigner, "load-crash",        "loads",             "signal 11 (Segmentation fault) in loading"},
  {kIsp,    "load-prints",       "silent-load",       "printed 'vendor library 1.0' while"},
  {kIsp,    "load-descriptor",   "load-surroundings", " is left open"},
  {kIsp,    "load-closes",       "load-surroundings", "descriptor 0 of the host is closed"},
  {kIsp,    "load-directory",    "load-surroundings", "the working directory is /"},
  {kIsp,    "load-umask",        "load-surroundings", "the umask is 777 instead of "},
  {kIsp,    "load-locale",       "load-surroundings", "LC_TIME is C instead of "},
  {kIsp,    "load-mask",         "load-surroundings", "the mask is changed for signal 10"},
  {kIsp,    "load-handler",      "load-surroundings", "the handler is changed for signal 12"},
  {kIsp,    "empty-dump",        "empty-dump",        "returned 0, which is success"},
  {kIsp,    "empty-dump-256",    "empty-dump",        "returned 0x100, which zvisp ends with exit"},
  {kIsp,    "dump-crash",        "empty-dump",        "signal 11 (Segmentation fault) in DumpFlash"},
  {kIsp,    "dump-throw",        "empty-dump",        "signal 6 (Aborted) in DumpFlash of 0 bytes: let no exception leave a call"},
  {kIsp,    "dump-exit",         "empty-dump",        "exit status 0 in DumpFlash of 0 bytes"},
  {kIsp,    "dump-exit-at-once", "empty-dump",        "exit status 0 in DumpFlash of 0 bytes"},
  {kIsp,    "dump-hang",         "empty-dump",        "not return within 2 seconds from DumpFlash"},
  {kIsp,    "any-action",        "unknown-action",    "IspFlash with action 0 returned 0"},
  {kIsp,    "empty-map",         "empty-map",         "IspFlash without a bank returned 0"},
  {kIsp,    "small-table",       "full-map",          "signal 6 (Aborted) in IspFlash with 256 banks"},
  {kIsp,    "trusts-count",      "too-many-entries",  "a map that claims 257 banks returned 0"},
  {kIsp,    "any-order",         "target-order",      "the targets 1 and 0 returned 0"},
  {kIsp,    "equal-targets",     "target-order",      "the targets 1 and 1 returned 0"},
  {kIsp,    "cuts-path",         "endless-path",      "a path of 260 units and no zero returned 0"},
  {kIsp,    "missing-file",      "missing-file",      "a file that is missing returned 0"},
  {kIsp,    "missing-file-256",  "missing-file",      "a file that is missing returned 0x100"},
  {kIsp,    "missing-file-hang", "missing-file",      "not return within 2 seconds from IspFlash"},
  {kIsp,    "short-file",        "short-file",        "bank 2 of a file that has banks 0 and 1"},
  {kIsp,    "null-progress",     "callbacks-null",    "signal 11 (Segmentation fault) in DumpFlash"},
  {kIsp,    "progress-101",      "callbacks-set",     "the progress was 101 percent"},
  {kIsp,    "null-message",      "callbacks-set",     "the text of a message was null"},
  {kIsp,    "other-thread",      "callbacks-set",     "on another thread"},
  {kIsp,    "writes-action",     "record-kept",       "changed enumActionType"},
  {kIsp,    "overrun",           "record-bounds",     "a forbidden page after the record"},
  {kIsp,    "far-overrun",       "record-bounds",     "a forbidden page after the record"},
  {kIsp,    "reads-past-end",    "record-bounds",     "a forbidden page after the record"},
  {kIsp,    "underrun",          "record-bounds",     "a forbidden page in front of the record"},
  {kIsp,    "key-overrun",       "record-bounds",     "GetKeyFromFlash"},
  {kIsp,    "call-descriptor",   "call-surroundings", " is left open"},
  {kIsp,    "call-closes",       "call-surroundings", "descriptor 0 of the host is closed"},
  {kIsp,    "call-directory",    "call-surroundings", "the working directory is /"},
  {kIsp,    "call-umask",        "call-surroundings", "the umask is 777 instead of "},
  {kIsp,    "call-locale",       "call-surroundings", "LC_TIME is C instead of "},
  {kIsp,    "call-mask",         "call-surroundings", "the mask is changed for signal 10"},
  {kIsp,    "call-handler",      "call-surroundings", "the handler is changed for signal 12"},
  {kIsp,    "unload-prints",     "unloads",           "printed 'good bye' while"},
  {kIsp,    "unload-crash",      "unloads",           "signal 11 (Segmentation fault) in unloading"},
  {kIsp,    "unload-hang",       "unloads",           "not return within 2 seconds from unloading"},
  {kSigner, "zeros",             "sign-zeros",        "SignFwExport answered with success"},
  {kSigner, "missing-file",      "sign-missing-file", "SignFwExport answered with success"},
  {kSigner, "call-crash",        "sign-missing-file", "signal 11 (Segmentation fault) in SignFw"},
  {kSigner, "endless",           "sign-endless-path", "SignFwExport answered with success"},
  {kSigner, "strlen",            "sign-endless-path", "signal 11 (Segmentation fault) in SignFw"},
  {kSigner, "writes-request",    "sign-record",       "changed the request, which is const"},
  {kSigner, "overrun",           "sign-record",       "signal 11 (Segmentation fault) in SignFw"},
  {kSigner, "underrun",          "sign-record",       "wrote outside the request"},
  {kSigner, "call-descriptor",   "sign-surroundings", " is left open"},
  {kSigner, "call-umask",        "sign-surroundings", "the umask is 777 instead of "},
};
// clang-format on

class EveryFault : public CheckPlugin, public testing::WithParamInterface<Fault> {};

TEST_P(EveryFault, FailsInItsRowAlone) {
  const Fault& fault = GetParam();
  const bool hangs = std::string(fault.name).find("hang") != std::string::npos;
  const RunResult run = Check(TestPlugin(fault.plugin), fault.name,
                              {"--with-device", "--timeout", hangs ? "2" : "60"});
  EXPECT_EQ(run.status, 1) << run.out << run.err;
  EXPECT_THAT(Rows(run, "failed"), ElementsAre(fault.row)) << run.out;
  EXPECT_THAT(TextOf(run, fault.row), HasSubstr(fault.text));
  EXPECT_THAT(Rows(run, "warning"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, EveryFault, testing::ValuesIn(kFaults), [](const auto& fault) {
  std::string name = fault.param.plugin + ("_" + std::string(fault.param.name));
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

// Of a row of the table whose plug-in cannot be made by a fault.
constexpr const char* kRowsWithoutFault[] = {"isp-exports", "sign-exports", "optional-exports"};

TEST_F(CheckPlugin, EveryRowHasAPlugInThatFailsIt) {
  for (const char* const plugin : {kIsp, kSigner}) {
    for (const std::string& row : Rows(Check(TestPlugin(plugin)), "passed")) {
      const auto is_row = [&row](const Fault& fault) { return fault.row == row; };
      const bool is_left_out =
          std::count(std::begin(kRowsWithoutFault), std::end(kRowsWithoutFault), row) > 0;
      EXPECT_TRUE(is_left_out || std::any_of(std::begin(kFaults), std::end(kFaults), is_row))
          << row;
    }
  }
}

TEST_F(CheckPlugin, WarnsOfWhatIsNoFailure) {
  const RunResult record = Check(TestPlugin(kIsp), "writes-record");
  EXPECT_EQ(record.status, 0);
  EXPECT_THAT(Rows(record, "warning"), ElementsAre("record-kept"));
  EXPECT_THAT(TextOf(record, "record-kept"), HasSubstr("first at offset 60"));
  const RunResult stays = Check(TestPlugin(kIsp), "stays");
  EXPECT_EQ(stays.status, 0);
  EXPECT_THAT(Rows(stays, "warning"), ElementsAre("unloads"));
}

TEST_F(CheckPlugin, NamesMissingExports) {
  const RunResult isp = Check(TestPlugin("faulty_isp_lacks_calls"));
  EXPECT_EQ(isp.status, 1);
  EXPECT_THAT(Rows(isp, "failed"), ElementsAre("isp-exports"));
  EXPECT_THAT(TextOf(isp, "isp-exports"),
              HasSubstr("does not export SetCommInterface and RecordFWVersion:"));
  EXPECT_EQ(TextOf(isp, "empty-dump"), "A required call is missing.");
  EXPECT_THAT(Rows(isp, "not_run"), SizeIs(14));
  const RunResult signer = Check(TestPlugin("faulty_signer_lacks_calls"));
  EXPECT_THAT(Rows(signer, "failed"), ElementsAre("sign-exports"));
  EXPECT_THAT(TextOf(signer, "sign-exports"), HasSubstr("does not export VerifySignatureExport:"));
}

TEST_F(CheckPlugin, ReportsOptionalExportsAsPresentOrAbsent) {
  EXPECT_EQ(TextOf(Check(TestPlugin(kIsp)), "optional-exports"),
            "Present: ResetMCUExport. Absent: GetUserDefinedInfoFromDDCCI, IspEeprom, "
            "EnterISPModeExport and GetScalerType; the actions of these end with code 6. Never "
            "called: ChipEraseFlash.");
}

TEST_F(CheckPlugin, SaysWhyALibraryDoesNotLoad) {
  GivenFile(m_line / "text", "not a library\n");
  std::string foreign = ReadWholeFile(ZVISP_SIMULATOR);
  foreign.at(18) = 43;
  GivenFile(m_line / "foreign", foreign);
  struct {
    std::string file;
    const char* text;
  } const cases[] = {
      {m_line / "text", "It is not a library: put "},
      {m_line / "foreign", "It is an ELF library for machine 43, but this program needs"},
      {TestPlugin("needs_absent"),
       "It needs the library libabsent_of_tests.so, which is not found"},
      {TestPlugin("needs_symbol"), "undefined symbol: NobodyHasThisSymbol"},
  };
  for (const auto& one : cases) {
    const RunResult run = Check(one.file);
    EXPECT_EQ(run.status, 1) << one.file;
    EXPECT_THAT(Rows(run, "failed"), ElementsAre("loads"));
    EXPECT_THAT(TextOf(run, "loads"), HasSubstr(one.text));
    EXPECT_THAT(Rows(run, "passed"), IsEmpty());
    EXPECT_EQ(TextOf(run, "isp-exports"), "It does not load.");
  }
}

TEST_F(CheckPlugin, TheSimulatedDisplayPassesEveryCheck) {
  const RunResult with = Check(ZVISP_SIMULATOR);
  EXPECT_EQ(with.status, 0) << with.out << with.err;
  EXPECT_THAT(Rows(with, "passed"), SizeIs(20));
  EXPECT_THAT(EventsOf(with.out, "check"), SizeIs(20));
  const RunResult without = Check(ZVISP_SIMULATOR, "", {});
  EXPECT_EQ(without.status, 0);
  EXPECT_THAT(Rows(without, "passed"), SizeIs(12));
  EXPECT_THAT(Rows(without, "not_run"),
              ElementsAre("unknown-action", "empty-map", "full-map", "too-many-entries",
                          "target-order", "endless-path", "missing-file", "short-file"));
  EXPECT_EQ(TextOf(without, "empty-map"), "Needs --with-device.");
  EXPECT_THAT(EventOf(without.out, "summary"),
              HasSubstr("\"checks\":{\"passed\":12,\"not_run\":8}"));
}

TEST_F(CheckPlugin, WithoutADeviceNothingButADumpReachesTheDisplay) {
  Check(ZVISP_SIMULATOR, "", {});
  for (const std::string& line : m_line.AllDisplays().Journal(0)) {
    EXPECT_TRUE(line.find("name=DumpFlash") != std::string::npos || line.find("end ") == 0) << line;
    EXPECT_EQ(line.find("code=0x0"), std::string::npos) << line;
  }
  EXPECT_FALSE(m_line.AllDisplays().Journal(0).empty());
}

TEST_F(CheckPlugin, TheDisplayIsNeverWritten) {
  Check(ZVISP_SIMULATOR);
  EXPECT_THAT(m_line.AllDisplays().Flash(0), IsEmpty());
  EXPECT_THAT(m_line.AllDisplays().Counters(0), IsEmpty());
}

#ifdef ZVISP_SIGNER
TEST_F(CheckPlugin, TheReferenceSignerPassesEveryCheck) {
  for (const LineTool::Words& options : {LineTool::Words{}, LineTool::Words{"--with-device"}}) {
    const RunResult run = Check(ZVISP_SIGNER, "", options);
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_THAT(Rows(run, "passed"), SizeIs(10));
    EXPECT_THAT(EventsOf(run.out, "check"), SizeIs(10));
  }
}
#endif

TEST_F(CheckPlugin, PrintsATableOfEightyColumns) {
  Command command = m_line.LineOf({"check-plugin", TestPlugin(kIsp)});
  command.environment["ZVISP_FAULT"] = "empty-dump-256";
  const RunResult run = RunCommand(command);
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out,
              HasSubstr("PASS     leaves the process alone when loaded\n"
                        "FAIL     refuses a dump of 0 bytes\n"
                        "         DumpFlash of 0 bytes returned 0x100, which zvisp ends with exit "
                        "status\n"
                        "         0: use a code whose low 8 bits are not 0.\n"
                        "not run  refuses actions of other calls         Needs --with-device.\n"));
  EXPECT_THAT(run.out, testing::EndsWith("11 passed, 1 failed, 8 not run\n"));
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_THAT(line.size(), Lt(81u)) << line;
  }
}

TEST_F(CheckPlugin, AFileByABareNameIsThatOfTheWorkingDirectory) {
  GivenFile(m_line / "plugin.dylib", ReadWholeFile(TestPlugin(kIsp)));
  EXPECT_EQ(Check("plugin.dylib").status, 0);
}

TEST_F(CheckPlugin, AFileThatCannotBeReadIsNotAvailable) {
  const RunResult missing = Check(m_line / "nowhere");
  EXPECT_EQ(missing.status, 3);
  EXPECT_THAT(FieldOf(EventOf(missing.out, "error"), "text"),
              HasSubstr("cannot be read: No such file or directory; give the path of its file."));
  EXPECT_EQ(Check(m_line / "").status, 3);
}

TEST_F(CheckPlugin, MistypedWordsAreRefused) {
  EXPECT_EQ(RunCommand(m_line.LineOf({"check-plugin"})).status, 2);
  EXPECT_EQ(Check(TestPlugin(kIsp), "", {"--timeout", "soon"}).status, 2);
  EXPECT_EQ(Check(TestPlugin(kIsp), "", {"--comm", "1"}).status, 2);
}

// A run has the interface, and a plug-in under check may reach any.
TEST_F(CheckPlugin, NothingIsCheckedWhileARunHasAnInterface) {
  GivenFirmware(m_line / "fw.bin", 1000);
  m_line.AllDisplays().GivenFaults(3, "hang\n");
  StartedRun run(
      m_line.Line("run", {"--timeout", "60"}, {"--isp", "--fw", "fw.bin", "--comm", "3"}));
  ASSERT_TRUE(m_line.AllDisplays().WaitForJournal(3, "call "));
  const RunResult check = Check(TestPlugin(kIsp), "", {});
  EXPECT_EQ(check.status, 3);
  EXPECT_THAT(FieldOf(EventOf(check.out, "error"), "text"), HasSubstr("interface 3 is in use by"));
  EXPECT_THAT(EventsOf(check.out, "check"), IsEmpty());
  run.Kill(SIGTERM);
  ASSERT_TRUE(WaitForOutput(run, "Nothing new is started"));
  run.Kill(SIGTERM);
  EXPECT_EQ(run.Wait().status, 5);
}

TEST_F(CheckPlugin, ASignalEndsItAndWhatItHasStarted) {
  StartedRun check(LineOf(TestPlugin(kIsp), "load-hang", {"--timeout", "0"}));
  // The lock is taken when signals are listened to.
  const std::string lock = m_line.Tool().Elsewhere("locks") + "/comm-0";
  ASSERT_TRUE(WaitUntil([&lock] {
    return FileExists(lock) && ReadWholeFile(lock).find("check-plugin") != std::string::npos;
  }));
  check.Kill(SIGINT);
  const RunResult run = check.Wait();
  EXPECT_EQ(run.status, 130) << run.out << run.err;
  EXPECT_EQ(FieldOf(EventOf(run.out, "end"), "interrupted"), "true");
  // It would still hold the lock.
  EXPECT_EQ(Check(TestPlugin(kIsp), "", {}).status, 0);
}

}  // namespace
