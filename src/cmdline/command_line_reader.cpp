// SPDX-License-Identifier: MIT
#include "cmdline/command_line_reader.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <variant>

#include "base/transform.h"
#include "cmdline/option_scanner.h"
#include "cmdline/option_table.h"
#include "firmware/firmware_search.h"
#include "firmware/firmware_slots.h"

namespace zvisp {

namespace {

// The bit of the option with this effect; does not compile without one.
constexpr int BitOf(const AddBits& effect) {
  return std::find_if(std::begin(kOptions), std::end(kOptions),
                      [&effect](const OptionRow& row) {
                        return FieldOf(row) == effect.field &&
                               std::get<AddBits>(row.effect).number == effect.number;
                      })
      ->value;
}

constexpr int kUserDefinedBit = BitOf(Version(VERSION_LOCATION_USER_DEFINED));
constexpr std::uint32_t kMergeFwInfoBit = BitOf(Action(CP_ISPTOOL_ACTION_MERGE_FW_INFO));
constexpr int kWriteBit = BitOf(Merge(CP_MERGE_FW_INFO_WRITE));
constexpr unsigned int kSearchSlot = 0;  // slot of --fw and of the file that a search finds

// The last value that the scanner stored for an option of this bit field.
struct LastBit {
  BitField field;
  int value = 0;
};

class CommandLineReader {
 public:
  CommandLineReader(const std::string& directory, FwBankMap& slots, STRUCT_CP_ISP_CMD_ARGS& args,
                    wchar_t (&wszSettingFilePath)[kPathCapacity])
      : m_directory(directory),
        m_slots(slots),
        m_args(args),
        m_setting_file_path(wszSettingFilePath) {
    RegisterOptions();
  }

  bool Read(int argc, char** argv);

 private:
  // What each kind of option does; false refuses the command line.
  bool Apply(const AddBits& effect);
  bool Apply(const StoreText& effect);
  bool Apply(const SetSwitch& effect);
  bool Apply(const InsertFwFile& effect);
  bool Apply(const InsertStartBank& effect);
  bool Apply(const TakeFirmware& effect);
  bool Apply(const SearchFirmware& effect);
  bool Apply(const ChooseEdpMode& effect);

  void RegisterOptions();
  int& LastBitOf(BitField field);
  std::string Argument() const;
  bool FindFirmware();
  bool FindFirstBinFile();
  bool InsertFile(unsigned int slot, const std::string& path);
  void PrintStrayWords(int argc, char** argv) const;

  const std::string& m_directory;
  FwBankMap& m_slots;
  STRUCT_CP_ISP_CMD_ARGS& m_args;
  wchar_t (&m_setting_file_path)[kPathCapacity];
  CpZvCmdLindParse m_scanner;
  LastBit m_last_bits[4] = {
      {&STRUCT_CP_ISP_CMD_ARGS::ulActionBits},
      {&STRUCT_CP_ISP_CMD_ARGS::ulSignatureTypeBits},
      {&STRUCT_CP_ISP_CMD_ARGS::ulInformationBits},
      {&STRUCT_CP_ISP_CMD_ARGS::ulReadWriteBits},
  };
};

// Each bit field has a pointer of its own. The scanner compares the pointers when an abbreviation
// fits several options: it is ambiguous unless they are equal.
void CommandLineReader::RegisterOptions() {
  for (const OptionRow& row : kOptions) {
    const AddBits* const add_bits = std::get_if<AddBits>(&row.effect);
    int* const flag = add_bits == nullptr ? nullptr : &LastBitOf(add_bits->field);
    m_scanner.AddLongCmd(row.name, row.argument, flag, row.value);
  }
}

bool CommandLineReader::Read(int argc, char** argv) {
  // There are only long options, so whatever is neither the end nor an error is a row's match.
  int row = 0;
  for (int code = m_scanner.ParseCmdLineEx(argc, argv, &row); code != kScanEnd;
       code = m_scanner.ParseCmdLineEx(argc, argv, &row)) {
    if (code == kScanError) {
      std::printf("illegal option ' %c '!\n", m_scanner.GetUnknownChar());
      continue;
    }
    const auto apply = [this](const auto& effect) { return Apply(effect); };
    if (!std::visit(apply, kOptions[row].effect)) return false;
  }
  PrintStrayWords(argc, argv);
  return true;
}

int& CommandLineReader::LastBitOf(BitField field) {
  return std::find_if(std::begin(m_last_bits), std::end(m_last_bits),
                      [field](const LastBit& last) { return last.field == field; })
      ->value;
}

std::string CommandLineReader::Argument() const {
  const char* const argument = m_scanner.GetCmdArg();
  return argument == nullptr ? "" : argument;
}

// Kept quirk: the two texts are stored again for every later option with a bit, and such an option
// mostly has no argument. So "--userdefined 2 --erase" loses the 2, and --write only gives its text
// after --mergefwinfo.
bool CommandLineReader::Apply(const AddBits& effect) {
  m_args.*effect.field |= static_cast<std::uint32_t>(LastBitOf(effect.field));
  if (LastBitOf(&STRUCT_CP_ISP_CMD_ARGS::ulInformationBits) == kUserDefinedBit) {
    m_args.strUserDefined = Argument();
  }
  if (m_args.ulActionBits == kMergeFwInfoBit &&
      LastBitOf(&STRUCT_CP_ISP_CMD_ARGS::ulReadWriteBits) == kWriteBit) {
    m_args.strMergeCommand = Argument();
  }
  return true;
}

bool CommandLineReader::Apply(const StoreText& effect) {
  m_args.*effect.text = Argument();
  return true;
}

bool CommandLineReader::Apply(const SetSwitch& effect) {
  m_args.*effect.field = effect.setting;
  return true;
}

bool CommandLineReader::Apply(const InsertFwFile& effect) {
  return InsertFile(effect.slot, Argument());
}

bool CommandLineReader::Apply(const InsertStartBank& effect) {
  return InsertCommandStartBank(m_slots, effect.slot, Argument()) != 0;
}

bool CommandLineReader::Apply(const TakeFirmware&) {
  m_args.strFw = Argument();
  m_args.bFw = 1;
  // Kept quirk: --fw and --searchfw together are refused without a message of their own.
  if (m_args.bSearchFw != 0) return false;
  return InsertFile(kSearchSlot, m_args.strFw);
}

bool CommandLineReader::Apply(const SearchFirmware&) {
  m_args.bSearchFw = 1;
  if (m_args.bFw != 0) return false;
  m_args.strSearchMode = Argument();
  return FindFirmware() && InsertFile(kSearchSlot, m_args.strFw);
}

bool CommandLineReader::Apply(const ChooseEdpMode&) {
  const std::string mode = Argument();
  if (mode == "isp") {
    m_args.nEdpIspMode = EDP_ISP_MODE_ISP;
  } else if (mode == "readver") {
    m_args.nEdpIspMode = EDP_ISP_MODE_READ_VERSION;
  } else {
    // Kept quirk: no newline. Scripts match the line that this and the next message make together.
    std::printf("wrong edp isp mode!");
    return false;
  }
  return true;
}

// The searches run here and not in judgement, so --settingfile counts only when it is given first.
bool CommandLineReader::FindFirmware() {
  if (m_args.strSearchMode == "userdefined") {
    return GetUserDefinedBinNameFromTxt(m_directory, m_args.strFw) != 0;
  }
  if (m_args.strSearchMode == "auto") return FindFirstBinFile();
  if (m_args.strSearchMode == "prefix") {
    return GetBinNameFromPrefixSetting(m_directory, m_args.strSettingFile, m_setting_file_path,
                                       m_args.strFw) != 0;
  }
  std::printf("auto search fw parameter illegal!\n");
  return false;
}

bool CommandLineReader::FindFirstBinFile() {
  FileNames names;
  FindFile(m_directory, names, ".bin");
  if (names.empty()) {
    std::printf("cann't find bin file!\n");
    return false;
  }
  // Kept quirk: of several files, the first in the order of the directory, which nobody can
  // foresee.
  m_args.strFw = names.front();
  return true;
}

bool CommandLineReader::InsertFile(unsigned int slot, const std::string& path) {
  return InsertCommandFwFile(m_slots, slot, CCpTransform().ConvertStringToWString(path)) != 0;
}

// Kept quirk: control characters reach the terminal as they are. Scripts read this line.
void CommandLineReader::PrintStrayWords(int argc, char** argv) const {
  if (m_scanner.GetCmdIndex() >= argc) return;
  std::printf("non-option ARGV-elements: ");
  for (int i = m_scanner.GetCmdIndex(); i < argc; ++i) {
    if (argv[i] != nullptr) std::printf("%s ", argv[i]);
  }
  std::printf("\n");
}

}  // namespace

bool ReadCommandLine(int argc, char** argv, const std::string& directory, FwBankMap& slots,
                     STRUCT_CP_ISP_CMD_ARGS& args, wchar_t (&wszSettingFilePath)[kPathCapacity]) {
  return CommandLineReader(directory, slots, args, wszSettingFilePath).Read(argc, argv);
}

}  // namespace zvisp
