// SPDX-License-Identifier: MIT
#include "line/supervise/read_back.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "base/transform.h"

namespace line {

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

constexpr const char* kShortDump = "the plug-in dumped fewer bytes than it was asked for";
// The record counts addresses in 32 bits.
constexpr std::uint64_t kFlashEnd = std::uint64_t{1} << 32;

// As many bytes as there are, at most `length`.
std::string ReadAt(const std::string& path, std::uint64_t offset, std::size_t length) {
  std::string bytes(length, '\0');
  std::ifstream file(path, std::ios::binary);
  file.seekg(static_cast<std::streamoff>(offset));
  file.read(bytes.data(), static_cast<std::streamsize>(length));
  bytes.resize(file.gcount() > 0 ? static_cast<std::size_t>(file.gcount()) : 0);
  return bytes;
}

std::string SpacedHex(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, text.empty() ? "%02X" : " %02X",
                  static_cast<unsigned char>(byte));
    text += digits;
  }
  return text;
}

}  // namespace

ReadFinding CompareRead(const FlashRead& read, const std::string& dump) {
  const std::string bytes = ReadAt(dump, 0, read.length);
  if (bytes.size() != read.length) return {kShortDump, "", ""};
  return {"", SpacedHex(bytes), SpacedHex(read.equals)};
}

std::string WhyNoReadBack(const Setting& setting) {
  switch (setting.enumActionType) {
    // All four leave the banks of the map in the flash. What else ispcopy writes is not compared.
    case CP_ISPTOOL_ACTION_ISP:
    case CP_ISPTOOL_ACTION_ISP_USER:
    case CP_ISPTOOL_ACTION_ISP_DIFF:
    case CP_ISPTOOL_ACTION_ISP_COPY:
      break;
    default:
      return "Only --isp, --ispuser, --ispdiff and --ispcopy can be read back; leave the read-back "
             "out.";
  }
  if (setting.bCompareVer != 0) {
    return "--comparever may leave the flash as it was, so it cannot be read back; leave one of "
           "the two out.";
  }
  if (setting.szBootFwPath[0] != '\0') {
    return "Boot code cannot be read back, because nobody knows its banks; leave --boot or the "
           "read-back out.";
  }
  return "";
}

bool ReadBack::AddBanks(const Setting& setting, std::string& error) {
  const CCpTransform transform;
  for (std::uint32_t i = 0; i < setting.stMapFw.ulCount; ++i) {
    const STRUCT_C_STYLE_FW_BANK_SETTING& bank = setting.stMapFw.stBank[i];
    Piece piece;
    piece.address = std::uint64_t{setting.stMapFw.ulTargetBank[i]} * kFwBankBytes;
    piece.file = transform.ConvertUnicodeStringToUTF8(bank.wszPath);
    piece.offset = std::uint64_t{bank.ulFileBank} * kFwBankBytes;
    std::error_code failure;
    const std::uint64_t size = std::filesystem::file_size(piece.file, failure);
    if (failure || size <= piece.offset) {
      error = piece.file + " cannot be read, so nothing can be compared; check the file.";
      return false;
    }
    piece.length =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(size - piece.offset, kFwBankBytes));
    m_pieces.push_back(std::move(piece));
  }
  return true;
}

// Takes [first, end) out of every piece.
void ReadBack::Cut(std::uint64_t first, std::uint64_t end) {
  std::vector<Piece> left;
  const auto keep = [&left](const Piece& whole, std::uint64_t from, std::uint64_t to) {
    from = std::max(from, whole.address);
    to = std::min(to, whole.address + whole.length);
    if (from >= to) return;
    Piece part = whole;
    part.address = from;
    part.length = static_cast<std::uint32_t>(to - from);
    part.offset += from - whole.address;
    if (!whole.bytes.empty()) part.bytes = whole.bytes.substr(from - whole.address, to - from);
    left.push_back(std::move(part));
  };
  for (const Piece& piece : m_pieces) {
    keep(piece, 0, first);
    keep(piece, end, kFlashEnd);
  }
  m_pieces = std::move(left);
}

// Neighbours become one range, because each range is a call of the plug-in.
void ReadBack::JoinToRanges() {
  std::uint64_t end = kFlashEnd;  // where no piece begins, so the first one starts a range
  for (const Piece& piece : m_pieces) {
    if (piece.address != end) {
      m_ranges.push_back({static_cast<std::uint32_t>(piece.address), 0});
    }
    m_ranges.back().length += piece.length;
    end = piece.address + piece.length;
  }
}

bool ReadBack::Plan(const Setting& setting, const std::vector<AddressRange>& ignored,
                    std::string& error) {
  if (!AddBanks(setting, error)) return false;
  // The flag lies over the bytes of the files, so it is cut out of them and expected in their
  // place.
  if (setting.enumActionType == CP_ISPTOOL_ACTION_ISP_USER &&
      setting.stFlagSetting.ulFlagLength > 0) {
    const STRUCT_FLAG_SETTING& flag = setting.stFlagSetting;
    Piece piece;
    piece.address = flag.ulFlagAddr;
    piece.length = std::min<std::uint32_t>(flag.ulFlagLength, kUserFlagCapacity);
    piece.bytes.assign(reinterpret_cast<const char*>(flag.ucFlagData), piece.length);
    Cut(piece.address, piece.address + piece.length);
    m_pieces.push_back(std::move(piece));
  }
  for (const AddressRange& range : ignored) {
    Cut(range.first, range.last + 1);
  }
  std::sort(m_pieces.begin(), m_pieces.end(),
            [](const Piece& left, const Piece& right) { return left.address < right.address; });
  JoinToRanges();
  if (!m_ranges.empty()) return true;
  error = "Every planned byte is in a range to be ignored; leave less of them out.";
  return false;
}

std::string ReadBack::BytesOf(const Piece& piece) {
  return piece.file.empty() || !piece.bytes.empty()
             ? piece.bytes
             : ReadAt(piece.file, piece.offset, piece.length);
}

ReadBack::Finding ReadBack::Compare(const Range& range, const std::string& dump) const {
  Finding finding;
  for (const Piece& piece : m_pieces) {
    if (piece.address < range.address) continue;
    if (piece.address >= std::uint64_t{range.address} + range.length) break;
    const std::string expected = BytesOf(piece);
    const std::string actual = ReadAt(dump, piece.address - range.address, piece.length);
    // A dump that is too short proves nothing, so it is a failure and not a difference.
    if (expected.size() != piece.length || actual.size() != piece.length) {
      finding.failure = kShortDump;
      return finding;
    }
    finding.compared_bytes += piece.length;
    const auto at = std::mismatch(expected.begin(), expected.end(), actual.begin());
    if (at.first == expected.end()) continue;
    const auto address = piece.address + static_cast<std::uint64_t>(at.first - expected.begin());
    finding.difference =
        Difference{static_cast<std::uint32_t>(address / kFwBankBytes), address,
                   static_cast<std::uint8_t>(*at.first), static_cast<std::uint8_t>(*at.second)};
    return finding;
  }
  return finding;
}

}  // namespace line
