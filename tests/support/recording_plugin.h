// SPDX-License-Identifier: MIT
//
// What the recording plug-ins share: each call is written down with the bytes that it received,
// and answers what the test asked for. The environment carries the test's wishes:
//
//   ZVISP_RECORD_DIR            directory that receives the calls; without it nothing is written
//   ZVISP_RECORD_RESULT_<Name>  what the call of that name returns (C number; the default is
//                               success)
//   ZVISP_RECORD_ACTION         written over the first word of the record after recording it
//   ZVISP_RECORD_FILL           byte written over the whole record after recording it
//   ZVISP_RECORD_PRINT          text that each call prints on standard output
//   ZVISP_RECORD_UNLOAD         text that the library prints when it is unloaded
//   ZVISP_RECORD_CRASH          number of the signal that a call raises after recording it
//   ZVISP_RECORD_REPLACE_<Name> path of a file: the call of that name renames the file with ".new"
//                               appended onto it
//   ZVISP_RECORD_DESCRIPTORS    how many descriptors may be open in a call and at the unloading;
//                               with more the process aborts
//
// "calls.txt" gets a line for each call: its name and what the other arguments were. The record
// goes to "<number>.record", the key to "<number>.key", the number counting the calls from 0.
#ifndef ZVISP_TESTS_SUPPORT_RECORDING_PLUGIN_H_
#define ZVISP_TESTS_SUPPORT_RECORDING_PLUGIN_H_

#include <cstddef>
#include <string>

// A call that is being written down.
class RecordedCall {
 public:
  // Takes the next number and writes the line: the call's name and its arguments.
  explicit RecordedCall(const char* name, const std::string& arguments = "");

  // Writes bytes that the call received to "<number>.<kind>"; nothing for null.
  RecordedCall& Keep(const char* kind, const void* bytes, std::size_t size);

  // Writes into the record as the environment says. Only for calls that may.
  RecordedCall& Overwrite(void* record, std::size_t size);

  // Prints and raises a signal as the environment says, then gives the wanted result.
  int Answer(int success);

 private:
  std::string m_name;
  std::size_t m_number = 0;
};

#endif  // ZVISP_TESTS_SUPPORT_RECORDING_PLUGIN_H_
