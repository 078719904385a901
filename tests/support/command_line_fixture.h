// SPDX-License-Identifier: MIT
//
// What the tests of parsing and judgement share: a parser with a directory for each test, and its
// two records as a plug-in sees them.
#ifndef ZVISP_TESTS_SUPPORT_COMMAND_LINE_FIXTURE_H_
#define ZVISP_TESTS_SUPPORT_COMMAND_LINE_FIXTURE_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "cmdline/isp_args_parse.h"
#include "support/files.h"
#include "support/printed.h"
#include "support/record_bytes.h"
#include "support/record_offsets.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

class CommandLineTest : public testing::Test {
 protected:
  CommandLineTest() { GivenFreshParser(); }

  void GivenFreshParser() {
    m_parser = std::make_unique<CCpIspArgsParse>();
    m_parser->SetCurrentDir(m_scratch.Path() + "/");
  }

  // Firmware of so many banks in the parser's directory.
  void GivenFw(const std::string& name, std::size_t banks = 1) const {
    GivenSparseFile(m_scratch / name, banks * 65536);
  }

  // The result of a whole command line; m_out and m_err are what was printed.
  int Parse(std::vector<std::string> words) {
    words.insert(words.begin(), "prog");
    std::vector<char*> vector;
    for (std::string& word : words) {
      vector.push_back(word.data());
    }
    vector.push_back(nullptr);
    return Capturing(
        [&] { return m_parser->ParseArgs(static_cast<int>(words.size()), vector.data()); });
  }

  // The result of judging raw arguments.
  int Judge(const STRUCT_CP_ISP_CMD_ARGS& args) {
    return Capturing([&] { return m_parser->JudgeArgument(args); });
  }

  RecordBytes Setting() const { return RecordBytes(Bytes(m_parser->GetISPCmdSetting())); }
  RecordBytes SignArgs() const { return RecordBytes(Bytes(m_parser->GetDigitalSignArgs())); }

  ScratchDir m_scratch;
  std::unique_ptr<CCpIspArgsParse> m_parser;
  std::string m_out;
  std::string m_err;

 private:
  template <typename Code>
  int Capturing(Code&& code) {
    int result = -1;
    m_out = Printed([&] { m_err = PrintedErrors([&] { result = code(); }); });
    return result;
  }

  template <typename Record>
  static std::string Bytes(const Record& record) {
    return std::string(reinterpret_cast<const char*>(&record), sizeof record);
  }
};

#endif  // ZVISP_TESTS_SUPPORT_COMMAND_LINE_FIXTURE_H_
