// SPDX-License-Identifier: MIT
//
// A file's or directory's descriptor, closed at the end.
#ifndef ZVISP_LINE_JOURNAL_DESCRIPTOR_H_
#define ZVISP_LINE_JOURNAL_DESCRIPTOR_H_

#include <string_view>

namespace line {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : m_number(number) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;

  int Number() const { return m_number; }
  bool IsOpen() const { return m_number >= 0; }

 private:
  int m_number = -1;
};

// Writes all of the bytes, however many calls that takes; false, with errno, when some are not
// written.
bool WriteAll(int descriptor, std::string_view bytes);

}  // namespace line

#endif  // ZVISP_LINE_JOURNAL_DESCRIPTOR_H_
