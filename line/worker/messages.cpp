// SPDX-License-Identifier: MIT
#include "line/worker/messages.h"

#include <algorithm>
#include <cstddef>

#include "plugin/fresh_setting.h"

using namespace zvisp;

namespace line {

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;
using Args = STRUCT_CP_ISP_CMD_ARGS;

constexpr std::size_t kBanksAt =
    offsetof(Setting, stMapFw) + offsetof(STRUCT_C_STYLE_MAP_FW, stBank);
constexpr std::size_t kBankSize = sizeof(STRUCT_C_STYLE_FW_BANK_SETTING);
constexpr std::size_t kAfterBanks = offsetof(Setting, stFlagSetting);

// Every field of the raw arguments. One that is missing here arrives in the parent with its
// default, and no compiler notices.
// clang-format off
constexpr std::uint32_t Args::*kWords[] = {
  &Args::ulActionBits, &Args::ulSignatureTypeBits, &Args::ulInformationBits,
  &Args::ulReadWriteBits,
};
constexpr std::int32_t Args::*kNumbers[] = {
  &Args::bIspChannel, &Args::bCompareVer, &Args::bSearchFw, &Args::bFw, &Args::bDdcciCmd,
  &Args::bNewBoot,    &Args::nIspMode,    &Args::nEdpIspMode,
};
constexpr std::string Args::*kTexts[] = {
  &Args::strUserDefined,   &Args::strComm,         &Args::strFw,
  &Args::strSignFile,      &Args::strKeyPair,      &Args::strVerifyKeyFile,
  &Args::strSignKeyFile,   &Args::strSubCertFile,  &Args::strNextVerifyKeyFile,
  &Args::strSlave,         &Args::strMergeCommand, &Args::strVerAddr,
  &Args::strTotalVerLen,   &Args::strMajorVerLen,  &Args::strSubVerLen,
  &Args::strRecordVerMode, &Args::strDumpAddr,     &Args::strDumpLen,
  &Args::strDumpName,      &Args::strSettingFile,  &Args::strSearchMode,
  &Args::strFlagAddr,      &Args::strFlagData,     &Args::strSignatureMode,
  &Args::strBoot,          &Args::strWriteData,
};
// clang-format on

template <typename Archive>
void ArgsFields(Archive& archive, Args& args) {
  for (const auto field : kWords) {
    archive(args.*field);
  }
  for (const auto field : kNumbers) {
    archive(args.*field);
  }
  for (const auto field : kTexts) {
    archive(args.*field);
  }
}

struct WireSlot {
  std::uint32_t slot = 0, bank = 0;
  std::string path;
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(slot);
    archive(bank);
    archive(path);
  }
};

void WriteSlots(ByteWriter& writer, const FwBankMap& slots) {
  auto count = static_cast<std::uint32_t>(slots.size());
  writer(count);
  for (const auto& [slot, entry] : slots) {
    WireSlot{slot, entry.ulBank, entry.strFwPath.GetUtf8String()}.Fields(writer);
  }
}

void ReadSlots(ByteReader& reader, FwBankMap& slots) {
  std::uint32_t count = 0;
  reader(count);
  // The bytes come from another process, so their count is not trusted.
  for (std::uint32_t i = 0; i < count && i < kMapFwCapacity; ++i) {
    WireSlot slot;
    slot.Fields(reader);
    slots[slot.slot].ulBank = slot.bank;
    slots[slot.slot].strFwPath = slot.path;
  }
}

}  // namespace

std::string FrameBytes(MessageType type, std::string_view payload) {
  ByteWriter writer;
  auto length = static_cast<std::uint32_t>(payload.size());
  auto number = static_cast<std::uint32_t>(type);
  writer(length);
  writer(number);
  return writer.Take().append(payload);
}

std::optional<Frame> TakeFrame(std::string& bytes, bool& broken) {
  broken = false;
  if (bytes.size() < kFrameHeader) return std::nullopt;
  std::uint32_t header[2] = {};
  std::memcpy(header, bytes.data(), kFrameHeader);
  // A length that no sender uses: what was read is not the start of a frame.
  broken = header[0] > kLongestPayload;
  if (broken || bytes.size() - kFrameHeader < header[0]) return std::nullopt;
  Frame frame = {static_cast<MessageType>(header[1]), bytes.substr(kFrameHeader, header[0])};
  bytes.erase(0, kFrameHeader + header[0]);
  return frame;
}

std::string PackSetting(const Setting& setting) {
  const auto* const bytes = reinterpret_cast<const char*>(&setting);
  const std::size_t used = std::min<std::size_t>(setting.stMapFw.ulCount, kMapFwCapacity);
  std::string packed(bytes, kBanksAt + used * kBankSize);
  return packed.append(bytes + kAfterBanks, sizeof setting - kAfterBanks);
}

bool UnpackSetting(std::string_view bytes, Setting& zeroed) {
  constexpr std::size_t kTail = sizeof zeroed - kAfterBanks;
  if (bytes.size() < kBanksAt + kTail || bytes.size() > sizeof zeroed) return false;
  auto* const target = reinterpret_cast<char*>(&zeroed);
  std::memcpy(target, bytes.data(), bytes.size() - kTail);
  std::memcpy(target + kAfterBanks, bytes.data() + bytes.size() - kTail, kTail);
  return zeroed.stMapFw.ulCount <= kMapFwCapacity &&
         bytes.size() == kBanksAt + zeroed.stMapFw.ulCount * kBankSize + kTail;
}

std::string EncodeJudged(const JudgedWords& words) {
  ByteWriter writer;
  bool accepted = words.accepted;
  Args args = words.args;
  std::string setting = PackSetting(*words.setting);
  std::string sign_args(reinterpret_cast<const char*>(words.sign_args.get()), sizeof(SignArgs));
  writer(accepted);
  writer(setting);
  writer(sign_args);
  ArgsFields(writer, args);
  WriteSlots(writer, words.slots);
  return FrameBytes(MessageType::kJudged, writer.Take());
}

std::optional<JudgedWords> DecodeJudged(const Frame& frame) {
  if (frame.type != MessageType::kJudged) return std::nullopt;
  JudgedWords words;
  std::string setting;
  std::string sign_args;
  ByteReader reader(frame.payload);
  reader(words.accepted);
  reader(setting);
  reader(sign_args);
  ArgsFields(reader, words.args);
  ReadSlots(reader, words.slots);
  words.setting = MakeFreshSetting();
  words.sign_args = MakeZeroed<SignArgs>();
  if (!reader.IsWhole() || words.setting == nullptr || words.sign_args == nullptr ||
      !UnpackSetting(setting, *words.setting) || sign_args.size() != sizeof(SignArgs)) {
    return std::nullopt;
  }
  std::memcpy(static_cast<void*>(words.sign_args.get()), sign_args.data(), sizeof(SignArgs));
  return words;
}

}  // namespace line
