// SPDX-License-Identifier: MIT
//
// The bytes of a record as a plug-in sees them: read and written at literal offsets, without the
// project's own structs, so that a slip in their layout cannot hide. Little-endian; wide text has
// units of 4 bytes.
#ifndef ZVISP_TESTS_SUPPORT_RECORD_BYTES_H_
#define ZVISP_TESTS_SUPPORT_RECORD_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

class RecordBytes {
 public:
  // So many zero bytes.
  explicit RecordBytes(std::size_t size) : m_bytes(size, '\0') {}
  // What a plug-in received.
  explicit RecordBytes(std::string bytes) : m_bytes(std::move(bytes)) {}

  // Reading past the end throws std::out_of_range.
  std::uint8_t U8(std::size_t offset) const;
  std::uint32_t U32(std::size_t offset) const;
  std::int32_t I32(std::size_t offset) const;
  // Text up to its terminating zero, wide text as UTF-8.
  std::string Narrow(std::size_t offset) const;
  std::string Wide(std::size_t offset) const;

  // Each gives the record back, so that a row of a table holds several. Writing past the end throws
  // std::out_of_range. Texts are written without a terminating zero.
  RecordBytes& PutU8(std::size_t offset, std::uint8_t value);
  RecordBytes& PutU32(std::size_t offset, std::uint32_t value);
  RecordBytes& PutNarrow(std::size_t offset, std::string_view text);
  RecordBytes& PutWide(std::size_t offset, std::string_view utf8);
  RecordBytes& Fill(std::size_t offset, std::size_t count, std::uint8_t value);

  const std::string& Bytes() const { return m_bytes; }
  std::size_t Size() const { return m_bytes.size(); }

 private:
  std::string m_bytes;
};

// Success when both are the same to the byte; otherwise names the first offsets that differ.
testing::AssertionResult SameBytes(const std::string& actual, const std::string& expected);
inline testing::AssertionResult SameBytes(const RecordBytes& actual, const RecordBytes& expected) {
  return SameBytes(actual.Bytes(), expected.Bytes());
}

// The 275328-byte command-setting record after a command line that holds nothing but the option of
// an action, for a tool in a directory whose full path ends in "/".
RecordBytes PlainCommandSetting(std::uint32_t action, const std::string& tool_directory);

#endif  // ZVISP_TESTS_SUPPORT_RECORD_BYTES_H_
