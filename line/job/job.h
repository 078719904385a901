// SPDX-License-Identifier: MIT
//
// A job: what is done to each display of a line, and at which places. Read from a file by
// job_file.h.
#ifndef ZVISP_LINE_JOB_JOB_H_
#define ZVISP_LINE_JOB_JOB_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace line {

// Where something is in the job file, counted from 1.
struct JobPosition {
  std::uint32_t line = 0, column = 0;
};

// A file that a job may program or check with, as it must be.
struct JobFirmware {
  std::string path;    // as written; relative to the job file
  std::string sha256;  // 64 hexadecimal digits, lower case
  std::uint64_t bytes = 0;
  JobPosition position;
};

// Bytes of the flash that must have these values.
struct JobRead {
  std::uint32_t address = 0, length = 0;  // in flash, bytes
  std::string equals;                     // `length` bytes
};

// Either words of zvisp or a read.
struct JobStep {
  std::string name;
  std::vector<std::string> words;  // zvisp's; {unit} and {place} not yet replaced
  std::optional<JobRead> read;
  std::optional<double> timeout_s;
  bool readback = false;
  bool allow_unsigned = false;
  std::optional<std::uint32_t> expect;  // the scaler type that --getscalertype must answer
  JobPosition position;
  std::vector<JobPosition> word_positions;  // one for each of the words
  JobPosition words_position;               // of their list; of the step when it is a read
};

struct JobPlace {
  std::string name;
  std::uint32_t comm = 0;              // 1 to 16
  std::optional<std::uint32_t> slave;  // slave address
  JobPosition position;
};

struct JobHook {
  std::vector<std::string> before_unit, on_result;  // empty: none
  JobPosition before_unit_position, on_result_position;
  bool required = false;
  double timeout_s = 30;
};

// How the places share the line.
struct JobLine {
  std::uint32_t jobs_at_once = 16;
  std::uint32_t stagger_ms = 0;
  bool first_article = false;
  std::uint32_t stop_after = 0;  // failures in a row; 0: never
  bool serialise = false;        // places with one interface, one after the other
  bool copy = true;              // program private copies of the files
};

struct Job {
  std::string path;       // of the file, absolute
  std::string directory;  // of the file, absolute, ends in "/"
  std::string sha256;     // of the file
  std::string name;
  std::string pattern;  // of a serial
  bool once = false;
  JobLine line;
  std::vector<JobFirmware> firmware;
  std::string plugin_sha256;  // empty: any
  JobPosition plugin_position;
  std::vector<std::uint32_t> nothing_written;
  std::vector<std::string> ignore;  // ranges "FIRST-LAST" that are not compared
  JobHook hook;
  std::vector<JobStep> steps;
  std::vector<JobPlace> places;
};

}  // namespace line

#endif  // ZVISP_LINE_JOB_JOB_H_
