// SPDX-License-Identifier: MIT
//
// The tool's own command-line scanner: walks an argument vector one option at a time.
//
// Long options ("--name", "--name value", "--name=value", unique abbreviations) come from a table,
// short options ("-x", "-xvalue", "-x value", clusters "-xyz") from a string of letters.
//
// A word is one element of the argument vector; an argument is the value of an option. Words that
// are not options are moved after the options and keep their order. "--" ends the options.
//
// All state is in the object, and the scanner never ends the process: a diagnostic is one line on
// standard error that begins with the first word of the vector, and the scan continues after the
// word at fault. One thread uses one scanner.
#ifndef ZVISP_CMDLINE_OPTION_SCANNER_H_
#define ZVISP_CMDLINE_OPTION_SCANNER_H_

#include <vector>

namespace zvisp {

// Kinds of a long option.
constexpr int kNoArgument = 0;
constexpr int kRequiredArgument = 1;
constexpr int kOptionalArgument = 2;  // only ever taken from "--name=value"

// Codes of a scan step; any other is the value of a long option or the character of a short one.
constexpr int kScanEnd = -1;
constexpr int kNotALongOption = -1;        // of ParseLongCmd alone: read the word as short options
constexpr int kScanFlagStored = 0;         // a long option matched and stored through its pointer
constexpr int kScanNonOption = 1;          // a word returned in order: the scanner always permutes
constexpr int kScanMissingArgument = ':';  // only when the short-command string begins with ":"
constexpr int kScanError = '?';

}  // namespace zvisp

// One long option. The scanner copies the unit, but not the name and not the integer that the
// pointer points at: both must outlive the scan.
struct STRUCT_CP_LONG_CMD_UNIT {
  const char* szName;  // without the leading dashes; null ends a table
  int nHasArg;         // one of the kinds above
  int* pnFlag;         // when not null, a match stores nValue here and the step returns 0
  int nValue;          // the code of a match; not -1, which means the end of the options
};

class CpZvCmdLindParse {
 public:
  CpZvCmdLindParse();
  virtual ~CpZvCmdLindParse() = default;

  // Forgets all options, returns to word 1 and turns diagnostics on. The next step does not count
  // as a first one again, which matters to a leading "-" or "+" (see AddShortCmds).
  void Reset();

  // Stores the pointer (null counts as ""), which must outlive the scan; returns 0. A letter
  // followed by ":" requires an argument, by "::" takes an optional one (only as "-xvalue").
  // A leading ":" turns diagnostics off until Reset, except for the lists of ambiguous names.
  // One leading "-" or "+" is dropped at every step but a scanner's first, where it is a letter.
  int AddShortCmds(const char* short_cmds);

  // Append one long option, or those of a table up to a null name; return 0. Every search begins
  // with the option that was added first. A unit without a name never matches.
  int AddLongCmd(const char* name, int has_arg, int* flag, int value);
  int AddLongCmds(const STRUCT_CP_LONG_CMD_UNIT* table);

  // One scan step: returns a code as above. `argv[0]` is the program's name and is never scanned.
  // The pointers of `argv` are reordered in place, the words are not changed. A null pointer among
  // the first `argc` counts as a word that is not an option, and never becomes an argument.
  //
  // Prints, and returns '?' (or ':' in the two "requires an argument" cases), with the unknown
  // character in brackets:
  //   "%s: command '%s%s' is ambiguous; possibilities: '%s%s' '%s%s'\n"   [0]
  //   "%s: unrecognized command '%s%s'\n"                                 [0]
  //   "%s: option '%s%s' doesn't allow an argument\n"                     [the option's value]
  //   "%s: option '%s%s' requires an argument\n"                          [the option's value]
  //   "%s: invalid option -- '%c'\n"                                      [the character]
  //   "%s: option requires an argument -- '%c'\n"                         [the character]
  // Each ambiguous name from the third on has a line of its own, " '%s%s'\n". With diagnostics
  // off, the second has one too: names are printed in any case.
  int ParseCmdLine(int argc, char* const* argv);

  // The same, and stores in `*long_index`, if not null, the place of a matched long option in the
  // order of registration. Every other step leaves it alone.
  int ParseCmdLineEx(int argc, char* const* argv, int* long_index);

  // The same, and a single dash may introduce a long option too ("long-only mode"). A word of one
  // known short letter stays a short option.
  int ParseCmdLineLong(int argc, char* const* argv, int* long_index);

  // The argument of the option that the last step returned, or null. It points into its word, and
  // is never null for an option with a required argument.
  const char* GetCmdArg() const { return m_command_argument; }

  // After an error, what was wrong (see ParseCmdLine); '?' before the first error.
  int GetUnknownChar() const { return m_unknown_char; }

  // Index of the next word to scan; after the end, of the first word that is not an option.
  int GetCmdIndex() const { return m_command_index; }

  // The pieces of a step. They continue from the position of the scan and expect the vector of
  // that scan. A caller does not need them.

  // The step that the three above make.
  int ParseCmdLineHandler(int argc, char* const* argv, int* long_index, int long_only);

  // Matches the long option at the current position. `prefix`, "--" or "-", is only printed.
  // Returns a code, or kNotALongOption (long-only mode).
  int ParseLongCmd(int argc, char* const* argv, int* long_index, int long_only, const char* prefix);

  // Gets ready for a first step; returns the short-command string.
  const char* ParseCmdLineInital();

  // Swaps the run of non-options with the options that were scanned after it, in place.
  void ExchangeAdjacentSubsequence(char* const* argv);

 private:
  // A long option as its word has it: everything after the prefix.
  struct LongName;

  void PrepareStep();
  void AdvanceToNextWord(int argc, char* const* argv);
  void ClampPositions(int argc);
  void MoveOptionsBeforeRun(char* const* argv);
  void EndAtDoubleDash(int argc, char* const* argv);
  int EndOfOptions();

  int ScanWord(int argc, char* const* argv, int* long_index, int long_only);
  int ScanShortCmd(int argc, char* const* argv);
  int ReadShortArgument(int argc, char* const* argv, int character, bool required);
  int RejectShortCmd(char* const* argv, int character);

  int FindExactLongCmd(const LongName& name) const;
  int FindAbbreviatedLongCmd(const LongName& name, int long_only) const;
  bool IsInterchangeable(int index, int other) const;
  void PrintAmbiguous(const LongName& name, int chosen, int candidate, bool first) const;
  int RejectAmbiguousLongCmd();
  int RejectUnknownLongCmd(const LongName& name);
  int AcceptLongCmd(int argc, char* const* argv, const LongName& name, int index, int* long_index);
  int ReadLongArgument(int argc, char* const* argv, const LongName& name,
                       const STRUCT_CP_LONG_CMD_UNIT& unit);

  const char* FindShortLetter(char letter) const;
  bool TakeNextWordAsArgument(int argc, char* const* argv);
  int MissingArgumentCode() const;

  std::vector<STRUCT_CP_LONG_CMD_UNIT> m_long_cmds;
  const char* m_short_cmds;
  int m_initialised = 0;
  const char* m_next_char;  // inside the current word; between words, null or at its end
  int m_first_non_option;   // the run of skipped non-options: [first, last)
  int m_last_non_option;
  const char* m_command_argument;
  int m_command_index;
  int m_error_print;
  int m_unknown_char;
};

#endif  // ZVISP_CMDLINE_OPTION_SCANNER_H_
