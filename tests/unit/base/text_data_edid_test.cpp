// SPDX-License-Identifier: MIT
#include "base/text_data.h"

#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "edid_blocks.h"
#include "support/files.h"
#include "support/scratch_dir.h"
#include "unterminated.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<unsigned char>;

Bytes EdidBytes(const std::wstring& text, unsigned int capacity = 1024) {
  const Unterminated input(text);
  Bytes bytes(capacity + 1, 0x5A);
  const unsigned int count = EDIDToBin(input.Text(), input.Length(), bytes.data(), capacity);
  EXPECT_EQ(bytes[capacity], 0x5A) << "written past the capacity";
  bytes.resize(count);
  return bytes;
}

TEST(EDIDToBin, ConvertsListsWhoseBytesSumUpToZero) {
  EXPECT_THAT(EdidBytes(L"{ 0x00, 0xFF, 0x01 }"), ElementsAre(0x00, 0xFF, 0x01));
  EXPECT_THAT(EdidBytes(L"128,128"), ElementsAre(128, 128));
  EXPECT_THAT(EdidBytes(L"0"), ElementsAre(0));
}

TEST(EDIDToBin, RefusesListsWithAWrongSum) {
  EXPECT_THAT(EdidBytes(L"0x01, 0x01"), IsEmpty());
  EXPECT_THAT(EdidBytes(L"0xFF, 0x02"), IsEmpty());
  EXPECT_THAT(EdidBytes(L"0x80"), IsEmpty());
}

TEST(EDIDToBin, RefusesListsWithoutAByte) {
  for (const wchar_t* const text : {L"", L" ", L"{ }", L"// 0x00", L"name", L"/* 0x00,", L";"}) {
    EXPECT_THAT(EdidBytes(text), IsEmpty()) << text;
  }
}

TEST(EDIDToBin, RefusesValuesAbove255) {
  EXPECT_THAT(EdidBytes(L"255, 1"), ElementsAre(255, 1));
  EXPECT_THAT(EdidBytes(L"256"), IsEmpty());
  EXPECT_THAT(EdidBytes(L"0, 0xFFFFFFFF, 0"), IsEmpty());
}

TEST(EDIDToBin, RefusesMoreBytesThanTheOutputHolds) {
  EXPECT_THAT(EdidBytes(L"0, 0xFF, 1", 3), ElementsAre(0, 0xFF, 1));
  EXPECT_THAT(EdidBytes(L"0, 0xFF, 1", 2), IsEmpty());
  EXPECT_THAT(EdidBytes(L"0", 0), IsEmpty());
}

TEST(EDIDToBin, SkipsWhatIsNotAValue) {
  EXPECT_THAT(EdidBytes(L"const unsigned char edid[] = {\n  0x01, /* one */ 0xFF,\n};\n"),
              ElementsAre(0x01, 0xFF));
  EXPECT_THAT(EdidBytes(L"1; 2, x, 0xFE"), ElementsAre(2, 0xFE))
      << "a value without its separator is none";
}

Bytes BytesOfHex(const std::string& hex) {
  Bytes bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoul(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

// The bytes as a C array, 8 a line, as decimal or hexadecimal numbers.
std::wstring AsArray(const Bytes& bytes, const wchar_t* number) {
  std::wstring text = L"static const unsigned char edid[] = {  // sent by the display\n";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    wchar_t piece[16];
    std::swprintf(piece, 16, number, static_cast<unsigned int>(bytes[i]));
    text += piece;
    text += i % 8 == 7 ? L",\r\n" : L", ";
  }
  return text + L"};\n";
}

TEST(EDIDToBin, ConvertsTheBlocksOfRealDisplays) {
  for (const EdidRow& row : kEdidBlocks) {
    const Bytes bytes = BytesOfHex(row.hex);
    ASSERT_EQ(bytes.size(), row.bytes) << row.display;
    EXPECT_EQ(EdidBytes(AsArray(bytes, L"0x%02x")), bytes) << row.display;
    EXPECT_EQ(EdidBytes(AsArray(bytes, L"0X%X")), bytes) << row.display;
    EXPECT_EQ(EdidBytes(AsArray(bytes, L"%u")), bytes) << row.display;
  }
}

TEST(EDIDToBin, RefusesARealBlockWithOneBitFlipped) {
  for (const EdidRow& row : kEdidBlocks) {
    Bytes bytes = BytesOfHex(row.hex);
    bytes[row.bytes / 2] ^= 1;
    EXPECT_THAT(EdidBytes(AsArray(bytes, L"0x%02x")), IsEmpty()) << row.display;
  }
}

// Has the other decoder turn the numbers into a file of the format given.
std::string DecodeElsewhere(const ScratchDir& scratch, const EdidRow& row, const char* format) {
  const std::string input = GivenFile(scratch / "edid.txt", row.hex);
  const std::string output = scratch / format;
  const std::string command =
      std::string("edid-decode -o ") + format + " " + input + " " + output + " >/dev/null 2>&1";
  // Its status says whether the display follows the standards, which does not matter here.
  static_cast<void>(std::system(command.c_str()));
  return ReadWholeFile(output);
}

TEST(EDIDToBin, AgreesWithAnotherDecoder) {
  if (std::system("command -v edid-decode >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "edid-decode is not installed (Debian package edid-decode)";
  }
  const ScratchDir scratch;
  for (const EdidRow& row : kEdidBlocks) {
    const std::string array = DecodeElsewhere(scratch, row, "carray");
    const std::string raw = DecodeElsewhere(scratch, row, "raw");
    ASSERT_EQ(raw.size(), row.bytes) << row.display;
    EXPECT_EQ(EdidBytes(std::wstring(array.begin(), array.end())), Bytes(raw.begin(), raw.end()))
        << row.display;
  }
}

}  // namespace
