// SPDX-License-Identifier: MIT
//
// Everything that zvisp forgives and zvisp-line refuses: status 2, the exact sentences, and no
// display touched.
#include <filesystem>
#include <string>
#include <vector>

#include "line/support/line_tool.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Words = LineTool::Words;

class Refusal : public testing::Test {
 protected:
  Refusal() {
    GivenFirmware(m_line / "fw.bin", 70000);
    GivenFirmware(m_line / "b.bin", 10);
    GivenFile(m_line / "empty.bin", "");
  }

  std::vector<std::string> SentencesOf(const RunResult& run) const {
    std::vector<std::string> sentences;
    for (const std::string& event : EventsOf(run.out, "error")) {
      const std::size_t begin = event.find("\"text\":\"") + 8;
      std::string text = event.substr(begin, event.rfind('"') - begin);
      for (std::size_t at = text.find("\\\""); at != std::string::npos; at = text.find("\\\"", at))
        text.erase(at, 1);
      sentences.push_back(text);
    }
    return sentences;
  }

  void ExpectNothingTouched() const {
    EXPECT_TRUE(!std::filesystem::exists(m_line.DisplaysDirectory()) ||
                std::filesystem::is_empty(m_line.DisplaysDirectory()));
    EXPECT_EQ(m_line.Record().find("unit_start"), std::string::npos);
  }

  void ExpectRefused(const Words& words, const std::vector<std::string>& sentences,
                     const Words& options = {}) const {
    ExpectSentences(m_line.Run(words, options), sentences);
    ExpectSentences(Plan(words, options), sentences);
    ExpectNothingTouched();
  }

  // Both commands refuse these options of their own, and each points to its own help.
  void ExpectComplaint(const Words& options, const std::string& complaint) const {
    for (const char* const command : {"run", "plan"}) {
      ExpectSentences(RunCommand(m_line.Line(command, options, {"--resetmcu"})),
                      {"Command line: " + complaint + "; see zvisp-line " + command + " --help."});
    }
    ExpectNothingTouched();
  }

  void ExpectSentences(const RunResult& run, const std::vector<std::string>& sentences) const {
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(SentencesOf(run), sentences);
    EXPECT_EQ(FieldOf(EventOf(run.out, "end"), "exit_status"), "2");
    EXPECT_EQ(EventsOf(run.out, "error").size() + 1, CountLines(run.out));
  }

  RunResult Plan(const Words& words, const Words& options = {}) const {
    return RunCommand(m_line.Line("plan", options, words));
  }

  static std::size_t CountLines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }

  LineTool m_line;
};

struct RefusalRow {
  Words words;
  std::vector<std::string> sentences;
};

constexpr const char* kNoFlagAddress =
    "The bytes of --flagdata are not written without --flagaddr; add the address, or remove them.";

std::string NoOption(const std::string& word) {
  return "The word " + word + " is not an option of zvisp; remove it, or check how it is written.";
}
std::string NoType(const std::string& name) {
  return "The option --" + name +
         " has no effect without --sw or --hw; add one of them, or remove it.";
}
std::string NoWord(const std::string& value, const std::string& name) {
  return "The value " + value + " of --" + name +
         " does not fit its field of 32 bits; give a number from 0 to 0xFFFFFFFF.";
}
std::string Twice(const std::string& name) {
  return "The option --" + name + " is given more than once; give it once.";
}
std::string Futile(const std::string& name) {
  return "The action --" + name + " never reaches the display; there is nothing to run.";
}
std::string FlagBytes(int count) {
  std::string bytes = "1";
  for (int i = 1; i < count; ++i)
    bytes += ",1";
  return bytes;
}

// clang-format off
const RefusalRow kRows[] = {
  // what zvisp refuses itself
  {{},                                        {"There are no words of zvisp; give them after \"--\"."}},
  {{"--comm", "1"},                           {"zvisp refuses its words: Action type undefined or illegal!"}},
  {{"--isp", "--fw", "fw.bin", "--comm", "17"}, {"zvisp refuses its words: Parameter out of range! --comm 17"}},
  // what the scanner complains about, and words that are not options
  {{"--isp", "--fw", "fw.bin", "--frob"},     {NoOption("--frob")}},
  {{"--isp", "--fw", "fw.bin", "--bnak"},     {"The word --bnak is not an option of zvisp; did you mean --bank?"}},
  {{"--isp", "--fw", "fw.bin", "-x"},         {NoOption("-x")}},
  {{"--isp", "--fw", "fw.bin", "-"},          {NoOption("-")}},
  {{"--isp", "--fw", "fw.bin", ""},           {NoOption("")}},
  {{"--isp", "stray", "--fw", "fw.bin"},      {NoOption("stray")}},
  {{"--isp", "--fw", "fw.bin", "--", "--factory"}, {NoOption("--factory")}},
  {{"--isp", "--fw", "fw.bin", "--dump=1"},   {"The option --dump=1 could be --dumpflash or --dumpaddr; write the whole name."}},
  {{"--isp", "--fw", "fw.bin", "--comparever=1"}, {"The option --comparever takes no value; remove the \"=\" and what follows it."}},
  {{"--isp", "--fw", "fw.bin", "--slave"},    {"The option --slave needs a value; give it after the name."}},
  // a value that is given twice
  {{"--isp", "--fw", "fw.bin", "--bank", "1", "--bank", "2", "--bank", "3"}, {Twice("bank")}},
  {{"--isp", "--fw", "fw.bin", "--comm", "1", "--comm=1"}, {Twice("comm")}},
  // values that would be cut or replaced
  {{"--isp", "--fw", "fw.bin", "--bank", "0x100000001"},   {NoWord("0x100000001", "bank")}},
  {{"--isp", "--fw", "fw.bin", "--comm", "4294967299"},    {NoWord("4294967299", "comm")}},
  {{"--ispuser", "--fw", "fw.bin", "--flagaddr", "-1", "--flagdata", "1"}, {NoWord("-1", "flagaddr")}},
  {{"--ispuser", "--fw", "fw.bin", "--flagaddr", "0", "--flagdata", "1,0x100000002"}, {NoWord("0x100000002", "flagdata")}},
  {{"--dumpflash", "--dumpaddr", "99999999999999999999", "--dumplen", "1"}, {NoWord("99999999999999999999", "dumpaddr")}},
  {{"--dumpflash", "--dumpaddr", "0", "--dumplen", "1", "--dumpname", "out"}, {"The value out of --dumpname would be replaced by dumpFile.bin; give a name that ends in .bin."}},
  {{"--dumpflash", "--dumpaddr", "0", "--dumplen", "1", "--dumpname", std::string(256, 'n') + ".bin"}, {"The value of --dumpname has 260 characters, more than the 259 that fit its field; use a shorter path."}},
  {{"--recordver", "--flash", "--veraddr", "0", "--totalverlen", "4", "--majorverlen", "4", "--recordvermode", "7"}, {"The value 7 of --recordvermode would be taken as 2; give 0, 1 or 2."}},
  {{"--resetmcu", "--settingfile", "/" + std::string(259, 's')}, {"The value of --settingfile has 260 characters, more than the 259 that fit its field; use a shorter path."}},
  // signatures that would not be checked
  {{"--isp", "--fw", "fw.bin", "--dsmode", "3"},     {NoType("dsmode")}},
  {{"--isp", "--fw", "fw.bin", "--signfile", "s"},   {NoType("signfile")}},
  {{"--isp", "--fw", "fw.bin", "--keypair", "0"},    {NoType("keypair")}},
  {{"--isp", "--fw", "fw.bin", "--vkfile", "v"},     {NoType("vkfile")}},
  {{"--isp", "--fw", "fw.bin", "--skfile", "s"},     {NoType("skfile")}},
  {{"--isp", "--fw", "fw.bin", "--subcert", "c"},    {NoType("subcert")}},
  {{"--isp", "--fw", "fw.bin", "--nextvkfile", "v"}, {NoType("nextvkfile")}},
  {{"--isp", "--fw", "fw.bin", "--sw", "--factory", "--dsmode", "4"}, {"With --factory the signature of --sw is not checked; remove one of the two."}},
  {{"--isp", "--fw", "fw.bin", "--fw2", "b.bin", "--bank2", "8", "--sw", "--dsmode", "4"}, {"The signature covers the file of --fw alone, and other files are programmed as well; program each alone as --fw, or let them through with --allow-unsigned."}},
  // flags
  {{"--ispuser", "--fw", "fw.bin", "--flagdata", "1"}, {kNoFlagAddress}},
  {{"--ispuser", "--fw", "fw.bin", "--flagaddr", "0", "--flagdata", FlagBytes(256)}, {"The option --flagdata has 256 bytes, more than the 255 that can be counted; give at most 255."}},
  // boot code
  {{"--isp", "--fw", "fw.bin", "--hw", "--boot", "boot.bin"}, {"The boot file boot.bin would be looked for next to the executable; give its full path."}},
  {{"--isp", "--fw", "fw.bin", "--hw", "--boot", "/none/boot.bin"}, {"The boot file /none/boot.bin cannot be opened; give one that can be read."}},
  // actions
  {{"--erase"},               {Futile("erase")}},
  {{"--srstatus"},            {Futile("srstatus")}},
  {{"--flashtype"},           {Futile("flashtype")}},
  {{"--readsr"},              {Futile("readsr")}},
  {{"--writesr"},             {Futile("writesr")}},
  {{"--readsafeguard"},       {Futile("readsafeguard")}},
  {{"--writesafeguard"},      {Futile("writesafeguard")}},
  {{"--getstatus"},           {Futile("getstatus")}},
  {{"--mergefwinfo", "--read"}, {Futile("mergefwinfo")}},
  {{"--senduserdefinedinfo"}, {Futile("senduserdefinedinfo")}},
  {{"--i2cwrite", "--writedata", "1,2,3"}, {Futile("i2cwrite")}},
  {{"--sign"},                {"The action --sign concerns files and no display; use zvisp for it."}},
  {{"--verify"},              {"The action --verify concerns files and no display; use zvisp for it."}},
  {{"--getscalertype"},       {"The action --getscalertype needs the type that is right; give it with --expect before \"--\"."}},
};
// clang-format on

TEST_F(Refusal, EachHasItsSentenceAndTouchesNothing) {
  for (const RefusalRow& row : kRows) {
    SCOPED_TRACE(testing::PrintToString(row.words));
    ExpectRefused(row.words, row.sentences);
  }
}

TEST_F(Refusal, SentencesNameTheFilesInFull) {
  ExpectRefused({"--isp", "--fw", "empty.bin"}, {"The firmware file " + (m_line / "empty.bin") +
                                                 " is empty; give one that has bytes."});
  ExpectRefused(
      {"--isp", "--fw", "fw.bin", "--hw", "--boot", m_line / "empty.bin"},
      {"The boot file " + (m_line / "empty.bin") + " is empty; give one that has bytes."});
  ExpectRefused({"--isp", "--fw", "/tmp"}, {"zvisp refuses its words: File open fail! /tmp"});
}

TEST_F(Refusal, APathThatWouldBeCutIsRefused) {
  const std::string deep = m_line / (std::string(120, 'd') + "/" + std::string(120, 'e'));
  std::filesystem::create_directories(deep);
  GivenFirmware(deep + "/fw.bin", 10);
  ExpectRefused({"--isp", "--fw", deep + "/fw.bin"},
                {"The value of --fw0 has " + std::to_string(deep.size() + 7) +
                 " characters, more than the 256 that fit its field; use a shorter path."});
}

TEST_F(Refusal, AllThatIsWrongIsSaidAtOnce) {
  ExpectRefused({"--isp", "--fw", "fw.bin", "stray", "--vkfile", "v", "--slave", "0x100000001"},
                {NoOption("stray"), NoType("vkfile"), NoWord("0x100000001", "slave")});
}

TEST_F(Refusal, OfZvispLinesOwnOptions) {
  ExpectRefused({"--resetmcu"}, {"The option --expect is for --getscalertype alone; remove it."},
                {"--expect", "3"});
  ExpectComplaint({"--wait", "soon"}, "--wait: soon is not a number of seconds");
  ExpectComplaint({"--color", "blue"}, "--color: blue is not one of auto, always and never");
  ExpectComplaint({"--nothing-written", "1,x"},
                  "--nothing-written: x is not a number from 0 to 0xFFFFFFFF");
}

TEST_F(Refusal, OfSerials) {
  const auto run = [this](const std::string& serial) {
    Command command = m_line.Line("run", {}, {"--isp", "--fw", "fw.bin"});
    *std::find(command.arguments.begin(), command.arguments.end(), "ZP1") = serial;
    const RunResult result = RunCommand(command);
    EXPECT_EQ(result.status, 2) << result.out;
    return SentencesOf(result);
  };
  EXPECT_THAT(run(""), testing::ElementsAre("Command line: --unit: the text is blank; see "
                                            "zvisp-line run --help."));
  EXPECT_THAT(run("  "), testing::ElementsAre("Command line: --unit: the text is blank; see "
                                              "zvisp-line run --help."));
  EXPECT_THAT(run(std::string(129, 'z')),
              testing::ElementsAre("The serial of --unit has 129 bytes, more than 128; give the "
                                   "display's own."));
  for (const char* serial : {"a\nb", "a\x7f", "a\xff"}) {
    EXPECT_THAT(run(serial),
                testing::ElementsAre("The serial of --unit has control characters, or is not "
                                     "UTF-8; give it as it is printed on the display."));
  }
  ExpectNothingTouched();
}

TEST_F(Refusal, AllowUnsignedLetsFilesThroughAndThePlanSaysSo) {
  const RunResult plan =
      Plan({"--isp", "--fw", "fw.bin", "--fw2", "b.bin", "--bank2", "8", "--sw", "--dsmode", "4"},
           {"--allow-unsigned"});
  EXPECT_EQ(plan.status, 0) << plan.out;
  EXPECT_THAT(EventOf(plan.out, "plan"),
              testing::HasSubstr("\"warnings\":[{\"id\":\"unsigned\",\"text\":\"No signature is "
                                 "checked of any file but that of --fw.\"}]"));
}

TEST_F(Refusal, AnAbbreviationThatIsUniquePasses) {
  EXPECT_EQ(Plan({"--isp", "--fw=fw.bin", "--comparev", "--comm", "3"}).status, 0);
  EXPECT_EQ(Plan({"--dumpflash", "--dumpaddr", "0xFFFFFFFF", "--dumplen", "1"}).status, 0);
}

}  // namespace
