// SPDX-License-Identifier: MIT
#include "cmdline/isp_args_parse.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "cmdline/option_scanner.h"
#include "cmdline/option_table.h"
#include "firmware/firmware_slots.h"

namespace {

constexpr int kUserDefinedBit = 0x80;
constexpr std::uint32_t kMergeFwInfoAction = 0x200000;
constexpr int kWriteBit = 0x2;
constexpr unsigned int kSearchSlot = 0;  // slot of --fw and of the file that a search finds

// The scanner stores the value of an option with bits through a pointer: one scratch word for
// each word of bits. It keeps the last value until the next option of its word.
struct ScratchWord {
  std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*bits;
  int value = 0;
};

// Reads one command line into a raw argument record, and firmware options into the parser.
class CommandLineReader {
 public:
  explicit CommandLineReader(CCpIspArgsParse& parser) : m_parser(parser) { RegisterOptions(); }

  // False as soon as an option refuses the command line.
  bool Read(int argc, char** argv);

  const STRUCT_CP_ISP_CMD_ARGS& Arguments() const { return m_args; }

  // What each kind of option does; false refuses the command line.
  bool operator()(const AddBits&) { return true; }
  bool operator()(const StoreText& effect);
  bool operator()(const SetSwitch& effect);
  bool operator()(const InsertFwFile& effect);
  bool operator()(const InsertStartBank& effect);
  bool operator()(const TakeFirmware&);
  bool operator()(const SearchFirmware&);
  bool operator()(const ChooseEdpMode&);

 private:
  void RegisterOptions();
  int& Word(std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*bits);
  std::string Argument() const;
  void TakeBits();
  bool TakeValue(int code);
  bool SearchFirst();
  void PrintStrayWords(int argc, char** argv) const;

  CCpIspArgsParse& m_parser;
  CpZvCmdLindParse m_scanner;
  STRUCT_CP_ISP_CMD_ARGS m_args;
  ScratchWord m_words[4] = {
      {&STRUCT_CP_ISP_CMD_ARGS::ulActionBits},
      {&STRUCT_CP_ISP_CMD_ARGS::ulSignatureTypeBits},
      {&STRUCT_CP_ISP_CMD_ARGS::ulInformationBits},
      {&STRUCT_CP_ISP_CMD_ARGS::ulReadWriteBits},
  };
};

void CommandLineReader::RegisterOptions() {
  for (const OptionRow& row : kOptions) {
    const AddBits* const add_bits = std::get_if<AddBits>(&row.effect);
    int* const flag = add_bits == nullptr ? nullptr : &Word(add_bits->bits);
    m_scanner.AddLongCmd(row.name, row.argument, flag, row.value);
  }
}

bool CommandLineReader::Read(int argc, char** argv) {
  for (int code = m_scanner.ParseCmdLineEx(argc, argv, nullptr); code != kScanEnd;
       code = m_scanner.ParseCmdLineEx(argc, argv, nullptr)) {
    if (code == kScanFlagStored) {
      TakeBits();
    } else if (code == kScanError) {
      std::printf("illegal option ' %c '!\n", m_scanner.GetUnknownChar());
    } else if (!TakeValue(code)) {
      return false;
    }
  }
  PrintStrayWords(argc, argv);
  return true;
}

int& CommandLineReader::Word(std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*bits) {
  return std::find_if(std::begin(m_words), std::end(m_words),
                      [bits](const ScratchWord& word) { return word.bits == bits; })
      ->value;
}

std::string CommandLineReader::Argument() const {
  const char* const argument = m_scanner.GetCmdArg();
  return argument == nullptr ? "" : argument;
}

// The two texts belong to whatever option is being read while their condition holds, so a later
// option without an argument empties them again: --userdefined and --write come last.
void CommandLineReader::TakeBits() {
  for (const ScratchWord& word : m_words) {
    m_args.*word.bits |= static_cast<std::uint32_t>(word.value);
  }
  if (Word(&STRUCT_CP_ISP_CMD_ARGS::ulInformationBits) == kUserDefinedBit) {
    m_args.strUserDefined = Argument();
  }
  if (m_args.ulActionBits == kMergeFwInfoAction &&
      Word(&STRUCT_CP_ISP_CMD_ARGS::ulReadWriteBits) == kWriteBit) {
    m_args.strMergeCommand = Argument();
  }
}

bool CommandLineReader::TakeValue(int code) {
  const auto has_code = [code](const OptionRow& row) {
    return row.value == code && !std::holds_alternative<AddBits>(row.effect);
  };
  const auto row = std::find_if(std::begin(kOptions), std::end(kOptions), has_code);
  return row == std::end(kOptions) || std::visit(*this, row->effect);
}

bool CommandLineReader::operator()(const StoreText& effect) {
  m_args.*effect.text = Argument();
  return true;
}

bool CommandLineReader::operator()(const SetSwitch& effect) {
  m_args.*effect.field = effect.setting;
  return true;
}

bool CommandLineReader::operator()(const InsertFwFile& effect) {
  return m_parser.InsertCommandFwFile(effect.slot, Argument()) != 0;
}

bool CommandLineReader::operator()(const InsertStartBank& effect) {
  return m_parser.InsertCommandStartBank(effect.slot, Argument()) != 0;
}

bool CommandLineReader::operator()(const TakeFirmware&) {
  m_args.strFw = Argument();
  m_args.bFw = 1;
  if (m_args.bSearchFw != 0) return false;
  return m_parser.InsertCommandFwFile(kSearchSlot, m_args.strFw) != 0;
}

bool CommandLineReader::operator()(const SearchFirmware&) {
  m_args.bSearchFw = 1;
  if (m_args.bFw != 0) return false;
  m_args.strSearchMode = Argument();
  bool found = false;
  if (m_args.strSearchMode == "userdefined") {
    found = m_parser.GetUserDefinedBinNameFromTxt(m_args.strFw) != 0;
  } else if (m_args.strSearchMode == "auto") {
    found = SearchFirst();
  } else if (m_args.strSearchMode == "prefix") {
    found = m_parser.GetBinNameFromPrefixSetting(m_args.strFw, m_args.strSettingFile) != 0;
  } else {
    std::printf("auto search fw parameter illegal!\n");
  }
  return found && m_parser.InsertCommandFwFile(kSearchSlot, m_args.strFw) != 0;
}

bool CommandLineReader::operator()(const ChooseEdpMode&) {
  const std::string mode = Argument();
  if (mode == "isp") {
    m_args.nEdpIspMode = EDP_ISP_MODE_ISP;
  } else if (mode == "readver") {
    m_args.nEdpIspMode = EDP_ISP_MODE_READ_VERSION;
  } else {
    // Without a line end: scripts match the line that this and the next message make together.
    std::printf("wrong edp isp mode!");
    return false;
  }
  return true;
}

bool CommandLineReader::SearchFirst() {
  FileNames names;
  m_parser.FindFile(m_parser.GetCurrentDir(), names, ".bin");
  if (names.empty()) {
    std::printf("cann't find bin file!\n");
    return false;
  }
  m_args.strFw = names.front();
  return true;
}

void CommandLineReader::PrintStrayWords(int argc, char** argv) const {
  if (m_scanner.GetCmdIndex() >= argc) return;
  std::printf("non-option ARGV-elements: ");
  for (int i = m_scanner.GetCmdIndex(); i < argc; ++i) {
    std::printf("%s ", argv[i]);
  }
  std::printf("\n");
}

}  // namespace

int CCpIspArgsParse::ParseArgs(int argc, char** argv) {
  CommandLineReader reader(*this);
  if (!reader.Read(argc, argv)) return 0;
  return JudgeArgument(reader.Arguments());
}

void CCpIspArgsParse::SetISPCmdSetting(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting) {
  CopyBytes(*m_setting, setting);
}

int CCpIspArgsParse::InsertCommandFwFile(unsigned int slot, const std::string& path) {
  return ::InsertCommandFwFile(m_slots, slot, m_transform.ConvertStringToWString(path));
}

int CCpIspArgsParse::InsertCommandStartBank(unsigned int slot, const std::string& text) {
  return ::InsertCommandStartBank(m_slots, slot, text);
}

int CCpIspArgsParse::GetFwBankCount(std::string& path, unsigned int& banks) const {
  return ::GetFwBankCount(m_current_dir, path, banks);
}

int CCpIspArgsParse::JudgeFwMap(FwBankMap& bankMap) const {
  return ::JudgeFwMap(m_slots, m_current_dir, *m_setting, bankMap);
}

void CCpIspArgsParse::FindFile(const std::string& dir, FileNames& out,
                               const std::string& ext) const {
  ::FindFile(dir, out, ext);
}

int CCpIspArgsParse::GetBinNameFromPrefixSetting(std::string& fwName,
                                                 const std::string& settingFile) {
  return ::GetBinNameFromPrefixSetting(m_current_dir, settingFile, m_setting->wszSettingFilePath,
                                       fwName);
}

int CCpIspArgsParse::GetUserDefinedInfoFromTxt(STRUCT_CP_GET_USER_DEFINED_BIN_INFO& info) const {
  return ::GetUserDefinedInfoFromTxt(m_current_dir, info);
}

int CCpIspArgsParse::GetUserDefinedBinNameFromTxt(std::string& fwName) const {
  return ::GetUserDefinedBinNameFromTxt(m_current_dir, fwName);
}

int CCpIspArgsParse::FindBinUseVersionInfo(FileNames& out, const FileNames& candidates,
                                           ENUM_FIND_BIN_MODE_USE_VER_MODE& mode,
                                           const std::string& version) const {
  return ::FindBinUseVersionInfo(out, candidates, mode, version);
}
