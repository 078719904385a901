// SPDX-License-Identifier: MIT
//
// Text without a terminating zero, so that a sanitizer sees a read past its length.
#ifndef ZVISP_TESTS_UNIT_BASE_UNTERMINATED_H_
#define ZVISP_TESTS_UNIT_BASE_UNTERMINATED_H_

#include <string>
#include <vector>

class Unterminated {
 public:
  explicit Unterminated(const std::wstring& text) : m_text(text.begin(), text.end()) {
    m_text.shrink_to_fit();
  }
  const wchar_t* Text() const { return m_text.data(); }
  unsigned int Length() const { return static_cast<unsigned int>(m_text.size()); }

 private:
  std::vector<wchar_t> m_text;
};

#endif  // ZVISP_TESTS_UNIT_BASE_UNTERMINATED_H_
