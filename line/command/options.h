// SPDX-License-Identifier: MIT
//
// The words of zvisp-line's own command line. Its options are between the command's name and "--";
// everything after "--" is zvisp's. options.cpp is the only source that knows the option library.
#ifndef ZVISP_LINE_COMMAND_OPTIONS_H_
#define ZVISP_LINE_COMMAND_OPTIONS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "line/event/printer.h"

namespace line {

enum class Command {
  kPlan,
  kRun,
  kReadback,
  kBatch,
  kJobInit,
  kCheckPlugin,
  kJournalShow,
  kJournalDoctor,
  kJournalResolve
};

struct Options {
  Command command = Command::kPlan;
  // Of all commands.
  bool json = false;
  bool quiet = false;
  When progress = When::kAuto;
  When color = When::kAuto;
  std::string data;  // --data, as given
  // Of plan, run and readback; some of them of batch and job init as well.
  std::string unit;
  std::optional<double> timeout_s;
  double wait_s = 0;
  std::string plugins;  // --plugins, as given
  std::vector<std::uint32_t> nothing_written;
  bool allow_unsigned = false;
  bool readback = false;
  std::vector<std::string> ignore;  // --ignore FIRST-LAST, as given
  std::optional<std::uint32_t> expect;
  std::vector<std::string> words;  // zvisp's, without a program name
  // Of batch.
  std::string job;  // path of the job's file, as given
  bool check = false;
  std::vector<std::string> units;  // --unit PLACE=SERIAL, as given
  std::vector<std::string> skip;   // --skip PLACE
  // Of job init.
  std::string output;               // --output, as given; empty: standard output
  std::string name;                 // --name
  std::string pattern;              // --pattern
  std::vector<std::string> places;  // --place NAME=COMM, as given
  // Of check-plugin, which has a time limit as well.
  std::string plugin_file;  // as given
  bool with_device = false;
  // Of journal show and journal resolve.
  std::string run;
  std::string note;
};

struct ParsedOptions {
  enum class Kind { kRun, kText, kRefused };
  Kind kind = Kind::kRefused;
  Options options;   // of kRefused as well: what was read until then
  std::string text;  // kText: for standard output, and exit status 0; kRefused: one sentence
};

// `arguments` without the program's name.
ParsedOptions ParseOptions(const std::vector<std::string>& arguments);

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_OPTIONS_H_
