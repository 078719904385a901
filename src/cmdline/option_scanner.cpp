// SPDX-License-Identifier: MIT
#include "cmdline/option_scanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

using namespace zvisp;

namespace {

constexpr int kFirstWord = 1;
constexpr int kNotFound = -1;
constexpr int kAmbiguous = -2;

bool IsOptionWord(const char* word) {
  return word != nullptr && word[0] == '-' && word[1] != '\0';
}

bool IsDoubleDash(const char* word) {
  return word != nullptr && std::strcmp(word, "--") == 0;
}

// A process may be started without a name.
const char* ProgramName(char* const* argv) {
  return argv[0] != nullptr ? argv[0] : "zvisp";
}

// Unsigned, so that no character equals the -1 of the end.
int AsCode(char character) {
  return static_cast<unsigned char>(character);
}

}  // namespace

struct CpZvCmdLindParse::LongName {
  const char* program;
  const char* prefix;
  const char* text;
  std::size_t length;  // up to the "=" or the end

  bool Begins(const char* full_name) const {
    return full_name != nullptr && std::strncmp(full_name, text, length) == 0;
  }
  bool Equals(const char* full_name) const {
    return Begins(full_name) && std::strlen(full_name) == length;
  }
  bool HasValue() const { return text[length] == '='; }
  const char* Value() const { return text + length + 1; }
};

CpZvCmdLindParse::CpZvCmdLindParse() {
  Reset();
}

void CpZvCmdLindParse::Reset() {
  m_long_cmds.clear();
  m_short_cmds = "";
  m_next_char = nullptr;
  m_first_non_option = kFirstWord;
  m_last_non_option = kFirstWord;
  m_command_argument = nullptr;
  m_command_index = kFirstWord;
  // m_initialised stays: the next step does not count as a first one again.
  m_error_print = 1;
  m_unknown_char = '?';
}

int CpZvCmdLindParse::AddShortCmds(const char* short_cmds) {
  m_short_cmds = short_cmds != nullptr ? short_cmds : "";
  return 0;
}

int CpZvCmdLindParse::AddLongCmd(const char* name, int has_arg, int* flag, int value) {
  m_long_cmds.push_back({name, has_arg, flag, value});
  return 0;
}

int CpZvCmdLindParse::AddLongCmds(const STRUCT_CP_LONG_CMD_UNIT* table) {
  if (table == nullptr) return 0;
  for (; table->szName != nullptr; ++table) {
    m_long_cmds.push_back(*table);
  }
  return 0;
}

int CpZvCmdLindParse::ParseCmdLine(int argc, char* const* argv) {
  return ParseCmdLineHandler(argc, argv, nullptr, 0);
}

int CpZvCmdLindParse::ParseCmdLineEx(int argc, char* const* argv, int* long_index) {
  return ParseCmdLineHandler(argc, argv, long_index, 0);
}

int CpZvCmdLindParse::ParseCmdLineLong(int argc, char* const* argv, int* long_index) {
  return ParseCmdLineHandler(argc, argv, long_index, 1);
}

int CpZvCmdLindParse::ParseCmdLineHandler(int argc, char* const* argv, int* long_index,
                                          int long_only) {
  if (argc < 1 || argv == nullptr) return kScanEnd;
  m_command_argument = nullptr;
  PrepareStep();
  if (m_next_char != nullptr && *m_next_char != '\0') return ScanShortCmd(argc, argv);
  AdvanceToNextWord(argc, argv);
  if (m_command_index == argc) return EndOfOptions();
  return ScanWord(argc, argv, long_index, long_only);
}

void CpZvCmdLindParse::PrepareStep() {
  if (m_command_index == 0 || m_initialised == 0) {
    m_short_cmds = ParseCmdLineInital();
  } else if (*m_short_cmds == '-' || *m_short_cmds == '+') {
    // Kept quirk: the sign asks for nothing, and the first step still reads it as a letter.
    ++m_short_cmds;
  }
  if (*m_short_cmds == ':') {
    // Only Reset turns diagnostics on again, other letters do not.
    m_error_print = 0;
  }
}

const char* CpZvCmdLindParse::ParseCmdLineInital() {
  if (m_command_index == 0) {
    m_command_index = kFirstWord;
  }
  // Kept quirk: the first word, wherever the scan is. The next step corrects both by itself.
  m_first_non_option = kFirstWord;
  m_last_non_option = kFirstWord;
  m_next_char = nullptr;
  m_initialised = 1;
  return m_short_cmds;
}

void CpZvCmdLindParse::AdvanceToNextWord(int argc, char* const* argv) {
  ClampPositions(argc);
  MoveOptionsBeforeRun(argv);
  while (m_command_index < argc && !IsOptionWord(argv[m_command_index])) {
    ++m_command_index;
  }
  m_last_non_option = m_command_index;
  if (m_command_index != argc && IsDoubleDash(argv[m_command_index])) EndAtDoubleDash(argc, argv);
}

// The next call may have a shorter vector: nothing is read or swapped after its end.
void CpZvCmdLindParse::ClampPositions(int argc) {
  m_command_index = std::min(m_command_index, argc);
  m_last_non_option = std::min(m_last_non_option, m_command_index);
  m_first_non_option = std::min(m_first_non_option, m_command_index);
}

// Options after a run of non-options move in front of it; without a run, a new one begins here.
void CpZvCmdLindParse::MoveOptionsBeforeRun(char* const* argv) {
  if (m_last_non_option == m_command_index) return;
  if (m_first_non_option != m_last_non_option) {
    ExchangeAdjacentSubsequence(argv);
  } else {
    m_first_non_option = m_command_index;
  }
}

void CpZvCmdLindParse::EndAtDoubleDash(int argc, char* const* argv) {
  ++m_command_index;
  MoveOptionsBeforeRun(argv);
  // Whatever follows "--" is not an option, so the run reaches to the end.
  m_last_non_option = argc;
  m_command_index = argc;
}

// The run of non-options is the last part of the vector now, and the caller reads it from there.
int CpZvCmdLindParse::EndOfOptions() {
  if (m_first_non_option != m_last_non_option) {
    m_command_index = m_first_non_option;
  }
  return kScanEnd;
}

void CpZvCmdLindParse::ExchangeAdjacentSubsequence(char* const* argv) {
  // Only the order of the pointers changes, and the vector of main is writable.
  char** words = const_cast<char**>(argv);
  int bottom = m_first_non_option;
  const int middle = m_last_non_option;
  int top = m_command_index;
  while (top > middle && middle > bottom) {
    const int lower = middle - bottom;
    const int upper = top - middle;
    if (upper > lower) {
      std::swap_ranges(words + bottom, words + middle, words + top - lower);
      top -= lower;
    } else {
      std::swap_ranges(words + middle, words + top, words + bottom);
      bottom += upper;
    }
  }
  m_first_non_option += m_command_index - m_last_non_option;
  m_last_non_option = m_command_index;
}

int CpZvCmdLindParse::ScanWord(int argc, char* const* argv, int* long_index, int long_only) {
  char* const word = argv[m_command_index];
  if (!IsOptionWord(word)) {
    // Never reached after AdvanceToNextWord; the code below relies on the leading dash.
    m_command_argument = word;
    ++m_command_index;
    return kScanNonOption;
  }
  // Without long options, "--x" is the letters "-" and "x".
  if (!m_long_cmds.empty() && word[1] == '-') {
    m_next_char = word + 2;
    return ParseLongCmd(argc, argv, long_index, long_only, "--");
  }
  const bool is_short_letter = word[2] == '\0' && FindShortLetter(word[1]) != nullptr;
  if (!m_long_cmds.empty() && long_only != 0 && !is_short_letter) {
    m_next_char = word + 1;
    const int code = ParseLongCmd(argc, argv, long_index, long_only, "-");
    if (code != kNotALongOption) return code;
  }
  m_next_char = word + 1;
  return ScanShortCmd(argc, argv);
}

int CpZvCmdLindParse::ScanShortCmd(int argc, char* const* argv) {
  const char letter = *m_next_char++;
  const char* const found = FindShortLetter(letter);
  if (*m_next_char == '\0') {
    ++m_command_index;
  }
  // ":" is a mark in the string of letters. Kept quirk: ";" is refused like it.
  if (found == nullptr || letter == ':' || letter == ';') {
    return RejectShortCmd(argv, AsCode(letter));
  }
  if (found[1] != ':') return AsCode(letter);
  return ReadShortArgument(argc, argv, AsCode(letter), found[2] != ':');
}

int CpZvCmdLindParse::ReadShortArgument(int argc, char* const* argv, int character, bool required) {
  int code = character;
  if (*m_next_char != '\0') {
    m_command_argument = m_next_char;
    ++m_command_index;
  } else if (required && !TakeNextWordAsArgument(argc, argv)) {
    if (m_error_print != 0) {
      std::fprintf(stderr, "%s: option requires an argument -- '%c'\n", ProgramName(argv),
                   character);
    }
    m_unknown_char = character;
    code = MissingArgumentCode();
  }
  m_next_char = nullptr;
  return code;
}

int CpZvCmdLindParse::RejectShortCmd(char* const* argv, int character) {
  if (m_error_print != 0) {
    std::fprintf(stderr, "%s: invalid option -- '%c'\n", ProgramName(argv), character);
  }
  m_unknown_char = character;
  return kScanError;
}

int CpZvCmdLindParse::ParseLongCmd(int argc, char* const* argv, int* long_index, int long_only,
                                   const char* prefix) {
  if (m_next_char == nullptr || m_command_index >= argc) return kScanEnd;
  const LongName name = {ProgramName(argv), prefix, m_next_char, std::strcspn(m_next_char, "=")};
  int index = FindExactLongCmd(name);
  // An exact name wins over longer names that begin with it: "--fw" is not "--fw1".
  if (index == kNotFound) {
    index = FindAbbreviatedLongCmd(name, long_only);
  }
  if (index == kAmbiguous) return RejectAmbiguousLongCmd();
  if (index != kNotFound) return AcceptLongCmd(argc, argv, name, index, long_index);

  const bool has_one_dash = std::strncmp(argv[m_command_index], "--", 2) != 0;
  if (long_only != 0 && has_one_dash && FindShortLetter(*name.text) != nullptr) {
    return kNotALongOption;
  }
  return RejectUnknownLongCmd(name);
}

int CpZvCmdLindParse::FindExactLongCmd(const LongName& name) const {
  const auto found = std::find_if(m_long_cmds.begin(), m_long_cmds.end(),
                                  [&name](const auto& unit) { return name.Equals(unit.szName); });
  return found != m_long_cmds.end() ? static_cast<int>(found - m_long_cmds.begin()) : kNotFound;
}

int CpZvCmdLindParse::FindAbbreviatedLongCmd(const LongName& name, int long_only) const {
  int chosen = kNotFound;
  bool ambiguous = false;
  for (int i = 0; i < static_cast<int>(m_long_cmds.size()); ++i) {
    if (!name.Begins(m_long_cmds[static_cast<std::size_t>(i)].szName)) continue;
    if (chosen == kNotFound) {
      chosen = i;
    } else if (long_only != 0 || !IsInterchangeable(chosen, i)) {
      PrintAmbiguous(name, chosen, i, !ambiguous);
      ambiguous = true;
    }
  }
  return ambiguous ? kAmbiguous : chosen;
}

// The caller gets the same answer from both, so the abbreviation is not ambiguous.
bool CpZvCmdLindParse::IsInterchangeable(int index, int other) const {
  const auto& one = m_long_cmds[static_cast<std::size_t>(index)];
  const auto& two = m_long_cmds[static_cast<std::size_t>(other)];
  return one.nHasArg == two.nHasArg && one.pnFlag == two.pnFlag && one.nValue == two.nValue;
}

// Kept quirk: the candidate is printed even with diagnostics off. It shows what may be meant.
void CpZvCmdLindParse::PrintAmbiguous(const LongName& name, int chosen, int candidate,
                                      bool first) const {
  if (m_error_print != 0 && first) {
    std::fprintf(stderr, "%s: command '%s%s' is ambiguous; possibilities:", name.program,
                 name.prefix, name.text);
    std::fprintf(stderr, " '%s%s'", name.prefix,
                 m_long_cmds[static_cast<std::size_t>(chosen)].szName);
  }
  std::fprintf(stderr, " '%s%s'", name.prefix,
               m_long_cmds[static_cast<std::size_t>(candidate)].szName);
  std::fprintf(stderr, "\n");
}

int CpZvCmdLindParse::RejectAmbiguousLongCmd() {
  m_next_char += std::strlen(m_next_char);
  ++m_command_index;
  m_unknown_char = 0;  // no option, so no value and no character
  return kScanError;
}

int CpZvCmdLindParse::RejectUnknownLongCmd(const LongName& name) {
  if (m_error_print != 0) {
    std::fprintf(stderr, "%s: unrecognized command '%s%s'\n", name.program, name.prefix, name.text);
  }
  m_next_char = nullptr;
  ++m_command_index;
  m_unknown_char = 0;
  return kScanError;
}

int CpZvCmdLindParse::AcceptLongCmd(int argc, char* const* argv, const LongName& name, int index,
                                    int* long_index) {
  const STRUCT_CP_LONG_CMD_UNIT& unit = m_long_cmds[static_cast<std::size_t>(index)];
  ++m_command_index;
  m_next_char = nullptr;
  const int failure = ReadLongArgument(argc, argv, name, unit);
  if (failure != 0) {
    m_unknown_char = unit.nValue;
    return failure;
  }
  if (long_index != nullptr) {
    *long_index = index;
  }
  if (unit.pnFlag == nullptr) return unit.nValue;
  *unit.pnFlag = unit.nValue;
  return kScanFlagStored;
}

// Returns 0, or the code of the failure that it printed.
int CpZvCmdLindParse::ReadLongArgument(int argc, char* const* argv, const LongName& name,
                                       const STRUCT_CP_LONG_CMD_UNIT& unit) {
  if (name.HasValue() && unit.nHasArg == kNoArgument) {
    if (m_error_print != 0) {
      std::fprintf(stderr, "%s: option '%s%s' doesn't allow an argument\n", name.program,
                   name.prefix, unit.szName);
    }
    return kScanError;
  }
  if (name.HasValue()) {
    m_command_argument = name.Value();
  } else if (unit.nHasArg == kRequiredArgument && !TakeNextWordAsArgument(argc, argv)) {
    if (m_error_print != 0) {
      std::fprintf(stderr, "%s: option '%s%s' requires an argument\n", name.program, name.prefix,
                   unit.szName);
    }
    return MissingArgumentCode();
  }
  return 0;
}

const char* CpZvCmdLindParse::FindShortLetter(char letter) const {
  return letter != '\0' ? std::strchr(m_short_cmds, letter) : nullptr;
}

// Any word, also one that looks like an option: in "--fw --isp" the file is "--isp".
bool CpZvCmdLindParse::TakeNextWordAsArgument(int argc, char* const* argv) {
  if (m_command_index >= argc || argv[m_command_index] == nullptr) return false;
  m_command_argument = argv[m_command_index];
  ++m_command_index;
  return true;
}

// A caller that has turned diagnostics off prints its own and must know the reason.
int CpZvCmdLindParse::MissingArgumentCode() const {
  return *m_short_cmds == ':' ? kScanMissingArgument : kScanError;
}
