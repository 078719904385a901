// SPDX-License-Identifier: MIT
//
// CCpZvString: the tool's text for paths, file names and settings. Its characters are `wchar_t`
// units (UTF-32). Where text leaves the wide world, the string makes a narrow copy on request and
// keeps it in a cache of its own.
#ifndef ZVISP_BASE_ZV_STRING_H_
#define ZVISP_BASE_ZV_STRING_H_

#include <compare>
#include <cstddef>
#include <string>

class CCpZvString {
 public:
  CCpZvString() = default;
  CCpZvString(const wchar_t* text);  // a null pointer gives the empty string
  CCpZvString(const wchar_t* text, std::size_t count);
  CCpZvString(std::size_t count, wchar_t character);
  CCpZvString(const CCpZvString& other);
  // The standard substring; a position past the end gives the empty string.
  CCpZvString(const CCpZvString& other, std::size_t position, std::size_t count);
  virtual ~CCpZvString() = default;

  // Every assignment replaces the value and leaves the narrow cache alone, so that pointers into
  // the cache stay valid until the next narrow conversion.
  CCpZvString& operator=(const CCpZvString& other);
  CCpZvString& operator=(const wchar_t* text);
  CCpZvString& operator=(wchar_t* text);
  CCpZvString& operator=(wchar_t character);
  CCpZvString& operator=(const std::wstring& text);
  // Takes the text as UTF-8; text that is not valid UTF-8 leaves the string empty.
  CCpZvString& operator=(const std::string& utf8);

  // Comparison of the values unit by unit, case-sensitive. A wide C string on either side is
  // converted; so is it for `+`.
  friend bool operator==(const CCpZvString& left, const CCpZvString& right) {
    return left.m_value == right.m_value;
  }
  friend std::strong_ordering operator<=>(const CCpZvString& left, const CCpZvString& right) {
    return left.m_value.compare(right.m_value) <=> 0;
  }
  friend CCpZvString operator+(const CCpZvString& left, const CCpZvString& right);
  friend CCpZvString operator+(const CCpZvString& left, wchar_t right);
  friend CCpZvString operator+(wchar_t left, const CCpZvString& right);

  // Replaces the value by the formatted text, which is limited to 1023 units; what is left of a
  // longer text is up to the platform's formatter.
  void Format(const wchar_t* format, ...);

  // The first n characters; the whole string when n is negative or larger than the length.
  CCpZvString Left(int n) const;
  // The last n characters; the empty string, not the whole one, when n is negative or not smaller
  // than the length.
  CCpZvString Right(int n) const;

  int GetLength() const;  // wide units
  bool IsEmpty() const { return m_value.empty(); }

  // The zero-terminated value, owned by the string, valid until the value changes.
  wchar_t* GetBuffer() { return m_value.data(); }
  const wchar_t* GetBuffer() const { return m_value.c_str(); }
  const wchar_t* GetString() const { return m_value.c_str(); }

  // The narrow copies. Each conversion renews the cache; a value that cannot be converted, or
  // whose UTF-8 form needs 10240 bytes or more, gives an empty text. Returned pointers are owned
  // by the string and valid until the next narrow conversion.
  void ConverToUtf8String() const;
  std::string GetUtf8String() const;
  const char* GetUtf8StringBuffer() const;
  int GetUtf8StringLength() const;  // bytes
  // In the encoding of the environment's locale.
  const char* GetAnsiString() const;
  // The form that the operating system wants for file names: UTF-8.
  const char* GetStringBufferBaseOnOS() const { return GetUtf8StringBuffer(); }

 private:
  std::wstring m_value;
  mutable std::string m_narrow_cache;
};

#endif  // ZVISP_BASE_ZV_STRING_H_
