// SPDX-License-Identifier: MIT
//
// What the flash of a display has to hold after a run, and the comparison with what was dumped.
// Compared are the planned bytes of each file; what a plug-in writes after a file's end in its last
// bank is its own business.
#ifndef ZVISP_LINE_SUPERVISE_READ_BACK_H_
#define ZVISP_LINE_SUPERVISE_READ_BACK_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "line/event/event.h"
#include "line/job/address_range.h"
#include "plugin/command_setting.h"

namespace line {

class ReadBack {
 public:
  // A contiguous range to be dumped by one call.
  struct Range {
    std::uint32_t address = 0, length = 0;
  };
  // What a comparison found; `failure` is a sentence when there was nothing to compare with.
  struct Finding {
    std::string failure;
    std::uint64_t compared_bytes = 0;
    std::optional<Difference> difference;  // the first one
  };

  ReadBack() = default;
  // Of a judged record, whose paths must lead to files that do not change. False, with a sentence
  // in `error`, when a file cannot be read or nothing is left to compare.
  bool Plan(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting,
            const std::vector<AddressRange>& ignored, std::string& error);

  const std::vector<Range>& Ranges() const { return m_ranges; }

  // Compares what a plug-in dumped of a range into a file.
  Finding Compare(const Range& range, const std::string& dump) const;

 private:
  // Bytes of a bank that are known: of a file, or given here.
  struct Piece {
    std::uint64_t address = 0;
    std::uint32_t length = 0;
    std::string file;          // empty: the bytes are in `bytes`
    std::uint64_t offset = 0;  // in the file
    std::string bytes;
  };
  static std::string BytesOf(const Piece& piece);
  bool AddBanks(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting, std::string& error);
  void Cut(std::uint64_t first, std::uint64_t end);
  void JoinToRanges();

  std::vector<Piece> m_pieces;  // ascending, none over another
  std::vector<Range> m_ranges;
};

// Bytes of the flash that must have these values.
struct FlashRead {
  std::uint32_t address = 0, length = 0;
  std::string equals;  // `length` bytes
};

struct ReadFinding {
  std::string failure;          // a sentence when there is nothing to compare with
  std::string value, expected;  // "52 34 2E"
};

// Compares what a plug-in dumped of these bytes into a file.
ReadFinding CompareRead(const FlashRead& read, const std::string& dump);

// Why the words cannot be read back, in a sentence; empty when they can.
std::string WhyNoReadBack(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting);

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_READ_BACK_H_
