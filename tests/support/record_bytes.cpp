// SPDX-License-Identifier: MIT
#include "support/record_bytes.h"
#include "support/record_offsets.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::size_t kDifferencesTold = 8;

// Appends a code point as UTF-8.
void AppendUtf8(std::string& text, std::uint32_t code) {
  const auto append = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    append(code);
  } else if (code < 0x800) {
    append(0xC0 | (code >> 6));
    append(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    append(0xE0 | (code >> 12));
    append(0x80 | ((code >> 6) & 0x3F));
    append(0x80 | (code & 0x3F));
  } else {
    append(0xF0 | ((code >> 18) & 0x07));
    append(0x80 | ((code >> 12) & 0x3F));
    append(0x80 | ((code >> 6) & 0x3F));
    append(0x80 | (code & 0x3F));
  }
}

// How many bytes follow the lead byte of a well-formed UTF-8 sequence.
std::size_t FollowingBytes(std::uint8_t lead) {
  if (lead >= 0xF0) return 3;
  if (lead >= 0xE0) return 2;
  return lead >= 0xC0 ? 1 : 0;
}

std::uint32_t LeadBits(std::uint8_t lead) {
  constexpr std::uint8_t kMasks[] = {0x7F, 0x1F, 0x0F, 0x07};
  return lead & kMasks[FollowingBytes(lead)];
}

}  // namespace

std::uint8_t RecordBytes::U8(std::size_t offset) const {
  return static_cast<std::uint8_t>(m_bytes.at(offset));
}

std::uint32_t RecordBytes::U32(std::size_t offset) const {
  return static_cast<std::uint32_t>(U8(offset)) | static_cast<std::uint32_t>(U8(offset + 1)) << 8 |
         static_cast<std::uint32_t>(U8(offset + 2)) << 16 |
         static_cast<std::uint32_t>(U8(offset + 3)) << 24;
}

std::int32_t RecordBytes::I32(std::size_t offset) const {
  return static_cast<std::int32_t>(U32(offset));
}

std::string RecordBytes::Narrow(std::size_t offset) const {
  return m_bytes.substr(offset, m_bytes.find('\0', offset) - offset);
}

std::string RecordBytes::Wide(std::size_t offset) const {
  std::string text;
  for (std::size_t at = offset; U32(at) != 0; at += 4)
    AppendUtf8(text, U32(at));
  return text;
}

RecordBytes& RecordBytes::PutU8(std::size_t offset, std::uint8_t value) {
  m_bytes.at(offset) = static_cast<char>(value);
  return *this;
}

RecordBytes& RecordBytes::PutU32(std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i)
    PutU8(offset + i, static_cast<std::uint8_t>(value >> (8 * i)));
  return *this;
}

RecordBytes& RecordBytes::PutNarrow(std::size_t offset, std::string_view text) {
  for (const char byte : text)
    PutU8(offset++, static_cast<std::uint8_t>(byte));
  return *this;
}

RecordBytes& RecordBytes::PutWide(std::size_t offset, std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size(); offset += 4) {
    const auto lead = static_cast<std::uint8_t>(utf8[at]);
    std::uint32_t code = LeadBits(lead);
    for (std::size_t i = 1; i <= FollowingBytes(lead); ++i)
      code = code << 6 | (static_cast<std::uint8_t>(utf8.at(at + i)) & 0x3Fu);
    at += 1 + FollowingBytes(lead);
    PutU32(offset, code);
  }
  return *this;
}

RecordBytes& RecordBytes::Fill(std::size_t offset, std::size_t count, std::uint8_t value) {
  for (std::size_t i = 0; i < count; ++i)
    PutU8(offset + i, value);
  return *this;
}

testing::AssertionResult SameBytes(const std::string& actual, const std::string& expected) {
  if (actual == expected) return testing::AssertionSuccess();
  testing::AssertionResult difference = testing::AssertionFailure();
  difference << actual.size() << " bytes, expected " << expected.size()
             << "; offset: got, expected";
  std::size_t told = 0;
  for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
    if (actual[i] == expected[i]) continue;
    difference << "; " << i << ": " << int{static_cast<std::uint8_t>(actual[i])} << ", "
               << int{static_cast<std::uint8_t>(expected[i])};
    if (++told == kDifferencesTold) break;
  }
  return difference;
}

RecordBytes PlainCommandSetting(std::uint32_t action, const std::string& tool_directory) {
  return RecordBytes(setting_at::kRecordBytes)
      .PutU32(setting_at::enumActionType, action)  // enumActionType
      .PutU32(setting_at::bAutoSlaveAddr, 1)       // bAutoSlaveAddr
      .PutU32(setting_at::enumIspMode, 1)          // enumIspMode
      .Fill(setting_at::ucFlagData, 1220, 0xFF)    // stFlagSetting.ucFlagData
      .PutU8(setting_at::ucSlave, 0xFF)            // stI2CWriteAction.ucSlave
      .PutU8(setting_at::ucSubAddr, 0xFF)          // stI2CWriteAction.ucSubAddr
      .PutU8(setting_at::ucDataLen, 1)             // stI2CWriteAction.ucDataLen
      .Fill(setting_at::ucData, 256, 0xFF)         // stI2CWriteAction.ucData
      .PutWide(setting_at::wszSettingFilePath,
               tool_directory + "IspSetting.ini");  // wszSettingFilePath
}
