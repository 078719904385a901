// SPDX-License-Identifier: MIT
#include "support/record_bytes.h"

#include <stdexcept>

namespace {

TEST(RecordBytesTest, NumbersAreLittleEndianAtTheirOffset) {
  RecordBytes record(std::size_t{8});
  record.PutU32(2, 0x11223344);
  EXPECT_EQ(record.Bytes(), std::string("\0\0\x44\x33\x22\x11\0\0", 8));
  EXPECT_EQ(record.U32(2), 0x11223344u);
  EXPECT_EQ(record.U8(3), 0x33);
}

TEST(RecordBytesTest, NegativeNumbersReadBack) {
  EXPECT_EQ(RecordBytes(std::string("\xFE\xFF\xFF\xFF")).I32(0), -2);
}

TEST(RecordBytesTest, WideTextHasUnitsOfFourBytesAndReadsBackAsUtf8) {
  RecordBytes record(std::size_t{20});
  record.PutWide(0, "a\u00FC\u4E2D\U0001F4BE");
  EXPECT_EQ(record.U32(0), 0x61u);
  EXPECT_EQ(record.U32(4), 0xFCu);
  EXPECT_EQ(record.U32(8), 0x4E2Du);
  EXPECT_EQ(record.U32(12), 0x1F4BEu);
  EXPECT_EQ(record.Wide(0), "a\u00FC\u4E2D\U0001F4BE");
}

TEST(RecordBytesTest, NarrowTextEndsAtItsZero) {
  EXPECT_EQ(RecordBytes(std::string("xab\0cd", 6)).Narrow(1), "ab");
}

TEST(RecordBytesTest, ReadingAndWritingPastTheEndThrow) {
  RecordBytes record(std::size_t{4});
  EXPECT_THROW(record.U32(1), std::out_of_range);
  EXPECT_THROW(record.PutU8(4, 0), std::out_of_range);
}

TEST(RecordBytesTest, AComparisonNamesTheOffsetsThatDiffer) {
  EXPECT_TRUE(SameBytes("abc", "abc"));
  EXPECT_FALSE(SameBytes("abc", "ab"));
  const testing::AssertionResult result = SameBytes("abc", "axc");
  EXPECT_FALSE(result);
  EXPECT_STREQ(result.message(), "3 bytes, expected 3; offset: got, expected; 1: 98, 120");
}

}  // namespace
