// SPDX-License-Identifier: MIT
//
// What the tests of the option scanner share: a guarded argument vector, and a fixture that scans
// one and describes the scan in a line of text.
#ifndef ZVISP_TESTS_SUPPORT_OPTION_SCANNER_FIXTURE_H_
#define ZVISP_TESTS_SUPPORT_OPTION_SCANNER_FIXTURE_H_

#include <cctype>
#include <initializer_list>
#include <string>
#include <vector>

#include "cmdline/option_scanner.h"
#include "support/printed.h"

#include <gtest/gtest.h>

// An argument vector "prog <words...>" with a word after its end that nothing may touch.
class Words {
 public:
  Words(std::initializer_list<const char*> words) : m_texts(words.begin(), words.end()) {
    m_pointers.push_back(m_program.data());
    for (std::string& text : m_texts) {
      m_pointers.push_back(text.data());
    }
    m_pointers.push_back(m_guard.data());
  }
  ~Words() { EXPECT_EQ(m_pointers.back(), m_guard.data()) << "swapped after the end"; }
  Words(const Words&) = delete;
  Words& operator=(const Words&) = delete;

  int Count() const { return static_cast<int>(m_pointers.size()) - 1; }
  char** Vector() { return m_pointers.data(); }
  std::string Order() const {
    std::string order;
    for (int i = 1; i < Count(); ++i) {
      order.append(i > 1 ? " " : "").append(m_pointers[static_cast<std::size_t>(i)]);
    }
    return order;
  }

 private:
  std::string m_program = "prog";
  std::string m_guard = "--guard";
  std::vector<std::string> m_texts;
  std::vector<char*> m_pointers;
};

// A letter or mark as itself, any other code as a number.
inline std::string CodeText(int code) {
  return code > 0 && std::isgraph(code) != 0 ? std::string(1, static_cast<char>(code))
                                             : std::to_string(code);
}

class OptionScannerTest : public testing::Test {
 protected:
  enum Mode { kTwoDashes, kLongOnly };

  void GivenLong(std::initializer_list<STRUCT_CP_LONG_CMD_UNIT> units) {
    for (const STRUCT_CP_LONG_CMD_UNIT& unit : units) {
      m_scanner.AddLongCmd(unit.szName, unit.nHasArg, unit.pnFlag, unit.nValue);
    }
  }

  int Step(Words& words, Mode mode = kTwoDashes) {
    return mode == kLongOnly ? m_scanner.ParseCmdLineLong(words.Count(), words.Vector(), &m_index)
                             : m_scanner.ParseCmdLineEx(words.Count(), words.Vector(), &m_index);
  }

  // Scans to the end: the codes with their arguments in braces, the index, and the final order.
  std::string Scan(Words& words, Mode mode = kTwoDashes) {
    std::string dump;
    for (int code = Step(words, mode); code != -1; code = Step(words, mode)) {
      dump += CodeText(code);
      if (m_scanner.GetCmdArg() != nullptr)
        dump.append("{").append(m_scanner.GetCmdArg()).append("}");
      dump += " ";
    }
    return dump.append("@")
        .append(std::to_string(m_scanner.GetCmdIndex()))
        .append(": ")
        .append(words.Order());
  }
  std::string Scan(std::initializer_list<const char*> list, Mode mode = kTwoDashes) {
    Words words(list);
    return Scan(words, mode);
  }

  // What one step printed on standard error.
  std::string Printed(Words& words, Mode mode = kTwoDashes) {
    return PrintedErrors([&] { m_code = Step(words, mode); });
  }

  void ExpectStartState() const {
    EXPECT_EQ(m_scanner.GetCmdArg(), nullptr);
    EXPECT_EQ(m_scanner.GetCmdIndex(), 1);
    EXPECT_EQ(m_scanner.GetUnknownChar(), '?');
  }

  CpZvCmdLindParse m_scanner;
  int m_index = -7;
  int m_code = -7;
};

#endif  // ZVISP_TESTS_SUPPORT_OPTION_SCANNER_FIXTURE_H_
