// SPDX-License-Identifier: MIT
//
// Runs whose memory is exhausted when a record is to be allocated. The first two records of a run
// are the parser's.
#include <string>

#include "support/end_to_end.h"

namespace {

#ifdef ZVISP_FAILING_CALLOC

class OutOfMemory : public EndToEnd {
 protected:
  // Expects the code of a record that was not allocated when only so many of these bytes are.
  void ExpectNoRecord(const Words& words, const std::string& bytes, const std::string& served,
                      const Words& calls) {
    Command command = m_tool.Line(words);
    command.environment["LD_PRELOAD"] = ZVISP_FAILING_CALLOC;
    command.environment["ZVISP_FAIL_CALLOC_BYTES"] = bytes;
    command.environment["ZVISP_FAIL_CALLOC_AFTER"] = served;
    const RunResult run = RunCommand(command);
    EXPECT_EQ(run.out, kBanner + FailLine("0xD69"));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 105);
    EXPECT_EQ(m_tool.TakeCallLines(), calls);
  }
};

TEST_F(OutOfMemory, AtEitherRecordOfTheRunIsToldBeforeAPlugInIsLoaded) {
  ExpectNoRecord({"--resetmcu"}, "275328", "1", {});
  ExpectNoRecord({"--resetmcu"}, "1840", "1", {});
}

TEST_F(OutOfMemory, AtTheRecordForTheDevicesKeyEndsTheRun) {
  m_tool.WithSignPlugin(TestPlugin("recording_sign"));
  GivenSparseFile(m_tool / "a.bin", 65536);
  GivenFile(m_tool / "a.sig", "s");
  ExpectNoRecord({"--isp", "--sw", "--dsmode", "4", "--fw", "a.bin", "--signfile", "a.sig"},
                 "275328", "2", {"SetUIFunction null null null"});
}

// The parser that reads the boot code's path has records of its own, too.
TEST_F(OutOfMemory, AtTheParserOrTheRecordOfTheBootCodeEndsTheRun) {
  GivenSparseFile(m_tool / "a.bin", 65536);
  const Words words = {"--isp",  "--hw",  "--newboot", "--factory",
                       "--boot", "b.bin", "--fw",      "a.bin"};
  const Words calls = {"SetUIFunction null null null"};
  ExpectNoRecord(words, "275328", "2", calls);
  ExpectNoRecord(words, "1840", "2", calls);
  ExpectNoRecord(words, "275328", "3", calls);
}

#endif

}  // namespace
