// SPDX-License-Identifier: MIT
#include "base/zv_string.h"

#include <cstdarg>
#include <cwchar>

#include "base/transform.h"

namespace {

constexpr std::size_t kFormatCapacity = 1024;  // wide units, terminating zero included

}  // namespace

CCpZvString::CCpZvString(const wchar_t* text) {
  *this = text;
}

CCpZvString::CCpZvString(const wchar_t* text, std::size_t count) {
  // A null pointer with a count would read from nowhere; it gives the empty string.
  if (text != nullptr) m_value.assign(text, count);
}

CCpZvString::CCpZvString(std::size_t count, wchar_t character) : m_value(count, character) {}

// Only the value is copied. The narrow cache belongs to those who asked the other string for it.
CCpZvString::CCpZvString(const CCpZvString& other) : m_value(other.m_value) {}

CCpZvString::CCpZvString(const CCpZvString& other, std::size_t position, std::size_t count) {
  if (position <= other.m_value.size()) m_value = other.m_value.substr(position, count);
}

CCpZvString& CCpZvString::operator=(const CCpZvString& other) {
  m_value = other.m_value;
  return *this;
}

CCpZvString& CCpZvString::operator=(const wchar_t* text) {
  // By way of a new text, because `text` may point into this value.
  m_value = std::wstring(text == nullptr ? L"" : text);
  return *this;
}

CCpZvString& CCpZvString::operator=(wchar_t* text) {
  return *this = static_cast<const wchar_t*>(text);
}

CCpZvString& CCpZvString::operator=(wchar_t character) {
  m_value.assign(1, character);
  return *this;
}

CCpZvString& CCpZvString::operator=(const std::wstring& text) {
  m_value = text;
  return *this;
}

CCpZvString& CCpZvString::operator=(const std::string& utf8) {
  m_value = CCpTransform().ConvertUTF8StringToUnicode(utf8);
  return *this;
}

CCpZvString operator+(const CCpZvString& left, const CCpZvString& right) {
  CCpZvString sum(left);
  sum.m_value += right.m_value;
  return sum;
}

CCpZvString operator+(const CCpZvString& left, wchar_t right) {
  return left + CCpZvString(1, right);
}

CCpZvString operator+(wchar_t left, const CCpZvString& right) {
  return CCpZvString(1, left) + right;
}

void CCpZvString::Format(const wchar_t* format, ...) {
  wchar_t buffer[kFormatCapacity] = {};
  std::va_list arguments;
  va_start(arguments, format);
  static_cast<void>(std::vswprintf(buffer, kFormatCapacity, format, arguments));
  va_end(arguments);
  // A formatter that ran out of room need not have terminated the text.
  buffer[kFormatCapacity - 1] = L'\0';
  m_value = buffer;
}

CCpZvString CCpZvString::Left(int n) const {
  // A negative n becomes a huge count, which takes the whole string.
  return CCpZvString(*this, 0, static_cast<std::size_t>(n));
}

CCpZvString CCpZvString::Right(int n) const {
  // A negative n becomes a huge count, and then there is nothing so long to take.
  const std::size_t wanted = static_cast<unsigned int>(n);
  if (m_value.size() <= wanted) return CCpZvString();
  return CCpZvString(*this, m_value.size() - wanted, wanted);
}

int CCpZvString::GetLength() const {
  return static_cast<int>(m_value.size());
}

void CCpZvString::ConverToUtf8String() const {
  m_narrow_cache = CCpTransform().ConvertUnicodeStringToUTF8(m_value);
}

std::string CCpZvString::GetUtf8String() const {
  ConverToUtf8String();
  return m_narrow_cache;
}

const char* CCpZvString::GetUtf8StringBuffer() const {
  ConverToUtf8String();
  return m_narrow_cache.c_str();
}

int CCpZvString::GetUtf8StringLength() const {
  ConverToUtf8String();
  return static_cast<int>(m_narrow_cache.size());
}

const char* CCpZvString::GetAnsiString() const {
  m_narrow_cache = CCpTransform().ConvertUnicodeStringToANSI(m_value);
  return m_narrow_cache.c_str();
}
