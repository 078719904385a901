// SPDX-License-Identifier: MIT
//
// What a job file says, and every sentence about one that is wrong.
#include "line/job/job_file.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "line/support/replaced.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

constexpr const char* kHash = "935bf57d7f52181f095c3a3484b68e542037e287f7cde4ffe8a32896d428a1b1";

// Everything that a job may have. The numbers of its lines are in the expectations below.
constexpr const char* kWhole = R"(schema = 1
name = "panel"
[unit]
pattern = "^ZP[0-9]{8}$"
once = true
[line]
jobs_at_once = 4
stagger_ms = 200
first_article = true
stop_after = 3
serialise = false
copy = false
[firmware]
"main.bin" = { sha256 = "935bf57d7f52181f095c3a3484b68e542037e287f7cde4ffe8a32896d428a1b1", bytes = 9 }
[plugin]
sha256 = "935BF57d7f52181f095c3a3484b68e542037e287f7cde4ffe8a32896d428a1b1"
nothing_written = [0x5A26, 23]
[readback]
ignore = ["0x1F0000-0x1FFFFF"]
[hook]
before_unit = ["./may", "{unit}"]
on_result = ["./mes"]
required = true
timeout_s = 2.5
[[step]]
name = "program"
zvisp = ["--isp", "--fw1", "main.bin"]
timeout_s = 300
readback = true
allow_unsigned = true
[[step]]
name = "type"
zvisp = ["--getscalertype"]
expect = 3
[[step]]
name = "version"
read = { addr = 0x1FF00, len = 4, equals = "52 34 2e31" }
[[place]]
name = "A1"
comm = 1
slave = 0x6E
[[place]]
name = "A2"
comm = 2
)";

// "LINE:COLUMN: sentence" of each error.
std::vector<std::string> ErrorsOf(const std::string& text) {
  std::vector<std::string> lines;
  for (const JobError& error : ReadJobText(text).errors) {
    lines.push_back(std::to_string(error.position.line) + ":" +
                    std::to_string(error.position.column) + ": " + error.text);
  }
  return lines;
}

TEST(JobFileTest, ReadsTheTablesOfTheLine) {
  const JobReading reading = ReadJobText(kWhole);
  ASSERT_THAT(ErrorsOf(kWhole), testing::IsEmpty());
  const Job& job = reading.job;
  EXPECT_EQ(job.name, "panel");
  EXPECT_EQ(job.pattern, "^ZP[0-9]{8}$");
  EXPECT_TRUE(job.once);
  EXPECT_EQ(job.line.jobs_at_once, 4u);
  EXPECT_EQ(job.line.stagger_ms, 200u);
  EXPECT_TRUE(job.line.first_article);
  EXPECT_EQ(job.line.stop_after, 3u);
  EXPECT_FALSE(job.line.serialise);
  EXPECT_FALSE(job.line.copy);
  EXPECT_THAT(job.ignore, testing::ElementsAre("0x1F0000-0x1FFFFF"));
  EXPECT_THAT(job.hook.before_unit, testing::ElementsAre("./may", "{unit}"));
  EXPECT_THAT(job.hook.on_result, testing::ElementsAre("./mes"));
  EXPECT_EQ(job.hook.before_unit_position.line, 21u);
  EXPECT_EQ(job.hook.on_result_position.column, 13u);
  EXPECT_TRUE(job.hook.required);
  EXPECT_EQ(job.hook.timeout_s, 2.5);
}

TEST(JobFileTest, ReadsFirmwareAndPlugin) {
  const Job job = ReadJobText(kWhole).job;
  ASSERT_EQ(job.firmware.size(), 1u);
  EXPECT_EQ(job.firmware[0].path, "main.bin");
  EXPECT_EQ(job.firmware[0].sha256, kHash);
  EXPECT_EQ(job.firmware[0].bytes, 9u);
  EXPECT_EQ(job.firmware[0].position.line, 14u);
  EXPECT_EQ(job.firmware[0].position.column, 1u);
  EXPECT_EQ(job.plugin_sha256, kHash);
  EXPECT_EQ(job.plugin_position.line, 16u);
  EXPECT_THAT(job.nothing_written, testing::ElementsAre(0x5A26u, 23u));
}

TEST(JobFileTest, ReadsStepsAndPlacesInTheirOrder) {
  const Job job = ReadJobText(kWhole).job;
  ASSERT_EQ(job.steps.size(), 3u);
  EXPECT_EQ(job.steps[0].name, "program");
  EXPECT_THAT(job.steps[0].words, testing::ElementsAre("--isp", "--fw1", "main.bin"));
  EXPECT_EQ(job.steps[0].timeout_s, 300);
  EXPECT_TRUE(job.steps[0].readback);
  EXPECT_TRUE(job.steps[0].allow_unsigned);
  EXPECT_FALSE(job.steps[0].read.has_value());
  EXPECT_EQ(job.steps[0].position.line, 25u);
  EXPECT_EQ(job.steps[1].expect, 3u);
  EXPECT_FALSE(job.steps[1].timeout_s.has_value());
  ASSERT_TRUE(job.steps[2].read.has_value());
  EXPECT_EQ(job.steps[2].read->address, 0x1FF00u);
  EXPECT_EQ(job.steps[2].read->length, 4u);
  EXPECT_EQ(job.steps[2].read->equals, "R4.1");
  ASSERT_EQ(job.places.size(), 2u);
  EXPECT_EQ(job.places[0].name, "A1");
  EXPECT_EQ(job.places[0].comm, 1u);
  EXPECT_EQ(job.places[0].slave, 0x6Eu);
  EXPECT_EQ(job.places[1].position.line, 42u);
  EXPECT_FALSE(job.places[1].slave.has_value());
}

constexpr const char* kLeast = R"(schema = 1
name = "least"
[unit]
pattern = "Z+"
[[step]]
name = "reset"
zvisp = ["--resetmcu"]
[[place]]
name = "A1"
comm = 16
)";

TEST(JobFileTest, LeavesTheRestAtItsDefaults) {
  const JobReading reading = ReadJobText(kLeast);
  ASSERT_THAT(ErrorsOf(kLeast), testing::IsEmpty());
  const Job& job = reading.job;
  EXPECT_FALSE(job.once);
  EXPECT_EQ(job.line.jobs_at_once, 16u);
  EXPECT_EQ(job.line.stagger_ms, 0u);
  EXPECT_FALSE(job.line.first_article);
  EXPECT_EQ(job.line.stop_after, 0u);
  EXPECT_TRUE(job.line.copy);
  EXPECT_FALSE(job.hook.required);
  EXPECT_EQ(job.hook.timeout_s, 30);
  EXPECT_EQ(job.plugin_sha256, "");
}

struct ErrorRow {
  const char* what;  // of the whole job
  std::string by;
  std::vector<std::string> errors;
};

// clang-format off
const ErrorRow kErrors[] = {
  // not TOML, or more than a job
  {"schema = 1", "schema = ",
   {"1:10: Error while parsing key-value pair: expected value, saw '\\n'; correct the line."}},
  {"[unit]", "[unit",
   {"3:6: Error while parsing table header: expected ']', saw '\\n'; correct the line."}},
  {"\"panel\"", "\"pa\\u0000nel",
   {"2:20: Error while parsing string: unescaped control characters other than TAB (U+0009) are explicitly prohibited; end the text by the quote that it begins with, in the same line."}},
  {"\"panel\"", "\u201cpanel\u201d",
   {"2:8: Error while parsing value: could not determine value type; write a text in straight quotes, and true or false in small letters."}},
  {"\"panel\"", "\"pa\\d\"",
   {"2:12: Error while parsing string: unknown escape sequence '\\d'; write each \\ twice, or the text in single quotes."}},
  {"once = true", "once = true\nonce = true",
   {"6:8: Error while parsing key-value pair: cannot redefine existing boolean 'once'; correct the line."}},
  {"[line]", "[unit]",
   {"6:1: Error while parsing table header: cannot redefine existing table 'unit'; write the table once, and each of several as [[step]] and [[place]] are."}},
  // keys that no table has
  {"stagger_ms", "staggr_ms",
   {"8:1: \"staggr_ms\" is not a key of [line]; did you mean \"stagger_ms\"?"}},
  {"once =", "onec =",
   {"5:1: \"onec\" is not a key of [unit]; did you mean \"once\"?"}},
  {"copy =", "telephone =",
   {"12:1: \"telephone\" is not a key of [line]; its keys are jobs_at_once, stagger_ms, first_article, stop_after, serialise, copy."}},
  {"[hook]", "[hooks]",
   {"20:2: \"hooks\" is not a key of a job; did you mean \"hook\"?"}},
  {"[readback]\nignore", "[readback]\nexclude",
   {"19:1: \"exclude\" is not a key of [readback]; the only one is ignore."}},
  {"bytes = 9", "bytes = 9, size = 9",
   {"14:104: \"size\" is not a key of a file of [firmware]; its keys are sha256, bytes."}},
  {"addr =", "address = 1, addr =",
   {"37:10: \"address\" is not a key of \"read\"; its keys are addr, len, equals."}},
  {"comm = 2", "comm = 2\nslve = 1",
   {"45:1: \"slve\" is not a key of [[place]]; did you mean \"slave\"?"}},
  // values of a wrong type
  {"schema = 1", "schema = \"1\"",
   {"1:10: The key \"schema\" needs the number 1, and has a text; correct the value."}},
  {"schema = 1", "schema = 1.5",
   {"1:10: The key \"schema\" needs the number 1, and has a number with a fraction, or one that is out of range; correct the value."}},
  {"name = \"panel\"", "name = 7",
   {"2:8: The key \"name\" needs a text in quotes, and has 7; correct the value."}},
  {"once = true", "once = \"yes\"",
   {"5:8: The key \"once\" needs true or false without quotes, and has a text; correct the value."}},
  {"stagger_ms = 200", "stagger_ms = -1",
   {"8:14: The key \"stagger_ms\" needs a whole number from 0 to 4294967295, and has -1; correct the value."}},
  {"stagger_ms = 200", "stagger_ms = 4294967296",
   {"8:14: The key \"stagger_ms\" needs a whole number from 0 to 4294967295, and has 4294967296; correct the value."}},
  {"stagger_ms = 200", "stagger_ms = 0.5",
   {"8:14: The key \"stagger_ms\" needs a whole number from 0 to 4294967295, and has a number with a fraction, or one that is out of range; correct the value."}},
  {"stagger_ms = 200", "stagger_ms = \"200\"",
   {"8:14: The key \"stagger_ms\" needs a whole number without quotes, and has a text; correct the value."}},
  {"first_article = true", "first_article = 1979-05-27",
   {"9:17: The key \"first_article\" needs true or false, and has a date or a time; correct the value."}},
  {"[0x5A26, 23]", "0x5A26",
   {"17:19: The key \"nothing_written\" needs a list of whole numbers from 0 to 4294967295, and has 23078; correct the value."}},
  {"[0x5A26, 23]", "[0x5A26,\n \"23\"]",
   {"18:2: The key \"nothing_written\" needs a list of whole numbers from 0 to 4294967295, and has a text; correct the value."}},
  {"[\"./mes\"]", "\"./mes\"",
   {"22:13: The key \"on_result\" needs a list of texts in quotes, and has a text; correct the value."}},
  {"[\"./mes\"]", "[\"./mes\", 1]",
   {"22:23: The key \"on_result\" needs a list of texts in quotes, and has 1; correct the value."}},
  {"[\"--getscalertype\"]", "[\"--getscalertype\", true]",
   {"33:29: The key \"zvisp\" needs a list of texts in quotes, and has true; correct the value."}},
  {"timeout_s = 300", "timeout_s = -1",
   {"28:13: The key \"timeout_s\" needs a number of seconds, 0 or more, and has -1; correct the value."}},
  {"timeout_s = 300", "timeout_s = inf",
   {"28:13: The key \"timeout_s\" needs a number of seconds, 0 or more, and has a number with a fraction, or one that is out of range; correct the value."}},
  {"timeout_s = 300", "timeout_s = nan",
   {"28:13: The key \"timeout_s\" needs a number of seconds, 0 or more, and has a number with a fraction, or one that is out of range; correct the value."}},
  {"timeout_s = 300", "timeout_s = 1000000001",
   {"28:13: The key \"timeout_s\" needs a number of seconds, 0 or more, and has 1000000001; correct the value."}},
  {"bytes = 9", "bytes = -9",
   {"14:101: The key \"bytes\" needs a whole number, 0 or more, and has -9; correct the value."}},
  {"read = { addr = 0x1FF00, len = 4, equals = \"52 34 2e31\" }", "read = 5",
   {"37:8: The key \"read\" needs a table, and has 5; correct the value."}},
  {"\"main.bin\" = {", "\"main.bin\" = 5 #",
   {"14:14: The key \"main.bin\" needs a table, and has 5; correct the value."}},
  {"[[step]]\nname = \"version\"", "[step]\nname = \"version\"",
   {"35:1: Error while parsing table header: cannot redefine existing array 'step' as table; correct the line."}},
  // what is missing
  {"schema = 1\n", "",
   {"1:1: The job has no \"schema\"; write schema = 1 at its top."}},
  {"schema = 1", "schema = 2",
   {"1:10: This job has schema 2, and this zvisp-line reads schema 1; use the release that reads it."}},
  {"name = \"panel\"\n", "",
   {"1:1: The job has no \"name\"; write name = \"...\" at its top."}},
  {"[unit]\npattern = \"^ZP[0-9]{8}$\"\nonce = true\n", "",
   {"1:1: The job has no \"unit\"; write [unit] with the pattern of a serial."}},
  {"pattern = \"^ZP[0-9]{8}$\"\n", "",
   {"3:1: [unit] has no \"pattern\"; give what a serial looks like, as \"^ZP[0-9]{8}$\"."}},
  {", bytes = 9", "",
   {"14:14: The file \"main.bin\" of [firmware] has no \"bytes\"; give its size in bytes."}},
  {"sha256 = \"935bf57d7f52181f095c3a3484b68e542037e287f7cde4ffe8a32896d428a1b1\", ", "",
   {"14:14: The file \"main.bin\" of [firmware] has no \"sha256\"; give its hash, as sha256sum prints it."}},
  {"name = \"program\"\n", "",
   {"25:1: This [[step]] has no \"name\"; give it one."}},
  {"zvisp = [\"--getscalertype\"]\n", "",
   {"31:1: This [[step]] does nothing; give it \"zvisp\" or \"read\"."}},
  {"len = 4, ", "",
   {"37:8: \"read\" has no \"len\"; give the number of bytes."}},
  {"name = \"A2\"\n", "",
   {"42:1: This [[place]] has no \"name\"; give it one."}},
  {"comm = 2\n", "",
   {"42:1: This [[place]] has no \"comm\"; give the number of its interface, 1 to 16."}},
  // texts
  {"\"panel\"", "\"  \"",
   {"2:8: The text of \"name\" is blank; fill it in."}},
  {"\"panel\"", "\"pa\\u0007nel\"",
   {"2:8: The text of \"name\" has control characters; remove them."}},
  {"\"--getscalertype\"", "\"--getscalertype\", \"a\\u0000\"",
   {"33:29: The text of \"zvisp\" has control characters; remove them."}},
  {"\"^ZP[0-9]{8}$\"", "\"\"",
   {"4:11: The text of \"pattern\" is blank; fill it in."}},
  // patterns
  {"\"^ZP[0-9]{8}$\"", "\"[0-9\"",
   {"4:11: The pattern of a serial is not a regular expression that can be used: it has a \"[\" without \"]\"; correct it."}},
  {"\"^ZP[0-9]{8}$\"", "\"(ZP\"",
   {"4:11: The pattern of a serial is not a regular expression that can be used: it has a \"(\" or \")\" without its other; correct it."}},
  // values that cannot be meant
  {"jobs_at_once = 4", "jobs_at_once = 0",
   {"7:16: With \"jobs_at_once\" = 0 nothing would start; give at least 1."}},
  {"\"935bf57d7f52181f095c3a3484b68e542037e287f7cde4ffe8a32896d428a1b1\", bytes", "\"935b\", bytes",
   {"14:25: \"sha256\" needs 64 hexadecimal digits, and has other text; copy what sha256sum prints."}},
  {"\"935BF57d", "\"X35BF57d",
   {"16:10: \"sha256\" needs 64 hexadecimal digits, and has other text; copy what sha256sum prints."}},
  {"\"0x1F0000-0x1FFFFF\"", "\"0x1F0000\"",
   {"19:10: \"0x1F0000\" is not a range; give FIRST-LAST, as 0x1F0000-0x1FFFFF."}},
  {"[\"./mes\"]", "[]",
   {"22:13: \"on_result\" names no program; give it as the first text, or remove the key."}},
  {"[\"./mes\"]", "[\"\"]",
   {"22:13: \"on_result\" names no program; give it as the first text, or remove the key."}},
  {"timeout_s = 2.5", "timeout_s = 0",
   {"24:13: A hook needs a time-out, or it could stop the line; give more than 0 seconds."}},
  // steps
  {"[\"--getscalertype\"]", "[]",
   {"33:9: \"zvisp\" has no words; give those of a zvisp command line."}},
  {"[\"--getscalertype\"]", "[\"--getscalertype\"]\nread = { addr = 0, len = 1, equals = \"00\" }",
   {"31:1: This [[step]] has both \"zvisp\" and \"read\"; make two steps of it."}},
  {"[\"--getscalertype\"]", "[\"--getscalertype\", \"--comm\", \"3\"]",
   {"33:29: The option --comm belongs to the place; move it to \"comm\" of each [[place]]."}},
  {"[\"--getscalertype\"]", "[\"--getscalertype\",\n  \"--comm=3\", \"--slav\", \"1\"]",
   {"34:3: The option --comm belongs to the place; move it to \"comm\" of each [[place]].",
    "34:15: The option --slave belongs to the place; move it to \"slave\" of each [[place]]."}},
  {"[\"--getscalertype\"]", "[\"--resetmcu\", \"--settingfile\", \"my.ini\"]",
   {"33:24: The settings file my.ini would be looked for next to the executable; give its full path."}},
  {"[\"--getscalertype\"]", "[\"--dumpflash\", \"--dumpname\", \"d.bin\"]",
   {"33:25: Every display would be dumped into d.bin; put {unit} or {place} into its name."}},
  {"[\"--getscalertype\"]", "[\"--dumpflash\"]",
   {"33:10: Every display would be dumped into one file; add --dumpname with {unit} or {place} in it."}},
  {"name = \"type\"", "name = \"program\"",
   {"31:1: Two steps are called \"program\", the first at line 25; rename one."}},
  {"read = {", "readback = true\nread = {",
   {"37:12: \"readback\" has no effect on a \"read\"; remove it."}},
  {"read = {", "expect = 3\nread = {",
   {"37:10: \"expect\" has no effect on a \"read\"; remove it."}},
  {"len = 4", "len = 0",
   {"37:32: \"read\" reads 1 to 4096 bytes; correct \"len\"."}},
  {"len = 4", "len = 4097",
   {"37:32: \"read\" reads 1 to 4096 bytes; correct \"len\"."}},
  {"len = 4", "len = 5",
   {"37:44: \"equals\" has 4 bytes and \"len\" is 5; make them agree."}},
  {"addr = 0x1FF00", "addr = 0xFFFFFFFD",
   {"37:35: \"read\" ends after the last address of a flash; correct it."}},
  {"\"52 34 2e31\"", "\"52 34 2e3\"",
   {"37:44: \"equals\" needs bytes of two hexadecimal digits, as \"52 34 2E 31\"; correct it."}},
  {"\"52 34 2e31\"", "\"52 34 zz 31\"",
   {"37:44: \"equals\" needs bytes of two hexadecimal digits, as \"52 34 2E 31\"; correct it."}},
  // places
  {"comm = 2", "comm = 0",
   {"44:8: \"comm\" is the number of an interface, 1 to 16, and has 0; correct it."}},
  {"comm = 2", "comm = 17",
   {"44:8: \"comm\" is the number of an interface, 1 to 16, and has 17; correct it."}},
  {"comm = 2", "comm = 1",
   {"42:1: The places \"A1\" and \"A2\" have the interface 1 both; correct one, or write serialise = true under [line]."}},
  {"\"A2\"", "\"A1\"",
   {"42:1: Two places are called \"A1\", the first at line 38; rename one."}},
  {"\"A2\"", "\"A/2\"",
   {"43:8: The name of a place has no \"/\", no \"=\", and no \"..\" at its start; rename it."}},
  {"\"A2\"", "\"A=2\"",
   {"43:8: The name of a place has no \"/\", no \"=\", and no \"..\" at its start; rename it."}},
  {"\"A2\"", "\"..2\"",
   {"43:8: The name of a place has no \"/\", no \"=\", and no \"..\" at its start; rename it."}},
};
// clang-format on

TEST(JobFileTest, EveryMistakeHasItsPlaceAndItsSentence) {
  for (const ErrorRow& row : kErrors) {
    SCOPED_TRACE(std::string(row.what) + " -> " + row.by);
    EXPECT_EQ(ErrorsOf(Replaced(kWhole, row.what, row.by)), row.errors);
  }
}

TEST(JobFileTest, AllMistakesAreReportedInTheOrderOfTheFile) {
  std::string text = Replaced(kLeast, "schema = 1", "schema = 3");
  text = Replaced(text, "comm = 16", "comm = 0\nslave = true");
  EXPECT_THAT(
      ErrorsOf(Replaced(text, "pattern", "patern")),
      testing::ElementsAre(
          "1:10: This job has schema 3, and this zvisp-line reads schema 1; use the release that "
          "reads it.",
          "3:1: [unit] has no \"pattern\"; give what a serial looks like, as \"^ZP[0-9]{8}$\".",
          "4:1: \"patern\" is not a key of [unit]; did you mean \"pattern\"?",
          "10:8: \"comm\" is the number of an interface, 1 to 16, and has 0; correct it.",
          "11:9: The key \"slave\" needs a whole number from 0 to 4294967295, and has true; "
          "correct "
          "the value."));
}

TEST(JobFileTest, AnEmptyFileLacksWhatAJobNeeds) {
  EXPECT_THAT(ErrorsOf(""),
              testing::ElementsAre(
                  "1:1: The job has no \"schema\"; write schema = 1 at its top.",
                  "1:1: The job has no \"name\"; write name = \"...\" at its top.",
                  "1:1: The job has no \"unit\"; write [unit] with the pattern of a serial.",
                  "1:1: The job has no \"step\"; write a [[step]] with what is done to a display.",
                  "1:1: The job has no \"place\"; write a [[place]] for each interface."));
  EXPECT_THAT(
      ErrorsOf("step = []\nplace = 3\nunit = 1\nname = \"n\"\nschema = 1"),
      testing::ElementsAre(
          "1:8: The job has no \"step\"; write a [[step]] with what is done to a display.",
          "2:9: The key \"place\" needs tables, each under [[place]], and has 3; correct the "
          "value.",
          "3:8: The key \"unit\" needs a table, and has 1; correct the value."));
}

TEST(JobFileTest, PlacesShareAnInterfaceWhenTheyAreSerialised) {
  const std::string text = Replaced(kWhole, "serialise = false", "serialise = true");
  EXPECT_THAT(ErrorsOf(Replaced(text, "comm = 2", "comm = 1")), testing::IsEmpty());
}

TEST(JobFileTest, ADumpMayHaveTheUnitOrThePlaceInItsName) {
  for (const char* const name : {"{unit}.bin", "dumps/{place}-1.bin"}) {
    EXPECT_THAT(ErrorsOf(Replaced(kWhole, "[\"--getscalertype\"]",
                                  std::string("[\"--dumpflash\", \"--dumpname=") + name + "\"]")),
                testing::IsEmpty());
  }
}

TEST(JobFileTest, NoFileIsTooLargeOrTooDeepForTheReader) {
  EXPECT_THAT(ErrorsOf(std::string(262145, '\n')),
              testing::ElementsAre("1:1: A job has at most 262144 bytes; give a job file."));
  EXPECT_THAT(ErrorsOf("schema = 1\n#" + std::string(4096, 'x')),
              testing::ElementsAre("2:1: A line of a job has at most 4096 bytes; break it."));
  std::string dotted = "a";
  while (dotted.size() < 2030)
    dotted += ".a";
  const std::string deep = "[" + dotted + "]\n" + dotted + " = { " + dotted + " = 1 }\n";
  EXPECT_THAT(ErrorsOf(deep), testing::SizeIs(6));
  EXPECT_THAT(ErrorsOf("a = " + std::string(4000, '[')), testing::SizeIs(1));
}

TEST(JobFileTest, NoFragmentOfAJobEndsTheReader) {
  const std::string whole = kWhole;
  for (std::size_t bytes = 0; bytes < whole.size(); ++bytes) {
    const JobReading reading = ReadJobText(whole.substr(0, bytes));
    // Until its first place is whole, it is not a job.
    EXPECT_TRUE(bytes >= whole.find("comm = 1") + 8 || !reading.errors.empty()) << bytes;
  }
}

TEST(JobFileTest, AHeaderWithoutAKeyIsASentence) {
  for (const char* const header : {"[.a]", "[$]", "[=]"}) {
    EXPECT_EQ(ErrorsOf(header), std::vector<std::string>(
                                    {std::string("1:2: Error while parsing key: expected bare key "
                                                 "starting character or string delimiter, saw "
                                                 "'") +
                                     header[1] + "'; correct the line."}));
  }
}

TEST(JobFileTest, NoRandomByteEndsTheReader) {
  std::mt19937 random(15);  // the same bytes in each run
  for (int i = 0; i < 3000; ++i) {
    std::string text = kWhole;
    for (int changes = 1 + static_cast<int>(random() % 4); changes > 0; --changes) {
      text[random() % text.size()] = static_cast<char>(random() % 256);
    }
    for (const JobError& error : ReadJobText(text).errors) {
      EXPECT_FALSE(error.text.empty());
      EXPECT_FALSE(error.id.empty());
      EXPECT_GT(error.position.line, 0u);
    }
  }
}

TEST(JobFileTest, AHundredAndOneStepsAreTooMany) {
  std::string text = kLeast;
  const auto more = [](int step) {
    return "[[step]]\nname = \"step " + std::to_string(step) +
           "\"\nzvisp = [\"--getscalertype\"]\n";
  };
  for (int step = 2; step <= 100; ++step) {
    text += more(step);
  }
  EXPECT_THAT(ErrorsOf(text), testing::IsEmpty());
  const auto line = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
  EXPECT_THAT(ErrorsOf(text + more(101)),
              testing::ElementsAre(std::to_string(line) +
                                   ":1: A job has at most 100 steps, and this one has 101; divide "
                                   "it into several jobs."));
}

TEST(JobFileTest, AFileHasItsPathItsDirectoryAndItsHash) {
  const ScratchDir directory;
  const std::string path = GivenFile(directory / "job.toml", kLeast);
  const JobReading reading = ReadJobFile(path);
  EXPECT_THAT(reading.errors, testing::IsEmpty());
  EXPECT_EQ(reading.job.path, path);
  EXPECT_EQ(reading.job.directory, directory / "");
  EXPECT_EQ(reading.job.sha256, "39d0379f3772da340c1f9daf8115f2ea3d46698c6c2a3cc49a97fd1225f033c5");
}

TEST(JobFileTest, WhatIsNoFileIsASentenceWithoutALine) {
  for (const char* const path : {"/none/job.toml", "/tmp", "/dev/zero"}) {
    const JobReading reading = ReadJobFile(path);
    ASSERT_EQ(reading.errors.size(), 1u);
    EXPECT_EQ(reading.errors[0].text, std::string("The job ") + path +
                                          " is not an ordinary file that can be read; check its "
                                          "name and its permissions.");
    EXPECT_EQ(reading.errors[0].position.line, 0u);
  }
}

TEST(JobFileTest, EveryKeyIsKnownByItsName) {
  EXPECT_THAT(
      JobKeyNames(),
      testing::ElementsAre(
          "schema", "name", "unit.pattern", "unit.once", "line.jobs_at_once", "line.stagger_ms",
          "line.first_article", "line.stop_after", "line.serialise", "line.copy",
          "firmware.FILE.sha256", "firmware.FILE.bytes", "plugin.sha256", "plugin.nothing_written",
          "readback.ignore", "hook.before_unit", "hook.on_result", "hook.required",
          "hook.timeout_s", "step.name", "step.zvisp", "step.read", "step.timeout_s",
          "step.readback", "step.allow_unsigned", "step.expect", "step.read.addr", "step.read.len",
          "step.read.equals", "place.name", "place.comm", "place.slave"));
}

}  // namespace
}  // namespace line
