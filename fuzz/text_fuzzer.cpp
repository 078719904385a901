// SPDX-License-Identifier: MIT
//
// Strings, conversions, paths and string helpers. Input: a line of delimiters, then a text.
//
// Promises: what converts, converts back; cut texts are terminated and begin as the whole one
// does; split pieces hold no delimiter and join to the text; numbers agree with the C library;
// and relative and absolute paths differ by their first characters.
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "base/path.h"
#include "base/string_util.h"
#include "base/transform.h"
#include "base/zv_string.h"
#include "support/fuzzing.h"

using namespace zvisp;

namespace {

constexpr std::size_t kCapacity = 16;
constexpr std::size_t kConversionUnits = 10240;

bool HasZero(const std::string& text) {
  return text.find('\0') != std::string::npos;
}

void CheckConversions(const std::string& text) {
  const CCpTransform transform;
  const std::wstring wide = transform.ConvertUTF8StringToUnicode(text);
  PROMISE(wide.size() < kConversionUnits);
  if (!wide.empty() && text.size() < kConversionUnits && !HasZero(text)) {
    PROMISE(transform.ConvertUnicodeStringToUTF8(wide) == text);
    PROMISE(transform.ConvertUnicodeStringToANSI(wide) == text);
    PROMISE(transform.ConvertCHARToUnicodeString(text.c_str()) == wide);
  }
  PROMISE(transform.ConvertUnicodeStringToUTF8(Widen(text)).size() < kConversionUnits);
  PROMISE(transform.ConvertWCHARToANSIString(nullptr).empty());
  PROMISE(transform.ConvertWCHARToCHAR(nullptr) == nullptr);
  PROMISE(transform.ConvertCHARToUnicodeString(nullptr).empty());
  CCpZvString assigned(L"old");
  assigned = text;
  PROMISE(assigned.GetString() == wide);
}

void CheckParts(const std::wstring& value, int count) {
  CCpZvString text;
  text = value;
  const CCpZvString left = text.Left(count);
  const CCpZvString right = text.Right(count);
  PROMISE(value.compare(0, static_cast<std::size_t>(left.GetLength()), left.GetString()) == 0 ||
          value.find(L'\0') != std::wstring::npos);
  if (count >= 0 && count < text.GetLength()) {
    PROMISE(left.GetLength() == count && right.GetLength() == count);
    PROMISE(text.Left(text.GetLength() - count) + right == text);
  } else {
    PROMISE(left == text && right.IsEmpty());
  }
  text.Format(L"%ls", value.c_str());
  PROMISE(text.GetLength() < 1024);
}

void CheckCopies(const std::string& text) {
  char narrow[kCapacity + 1];
  std::memset(narrow, '#', sizeof narrow);
  CopyUtf8ToBuffer(text, narrow, kCapacity);
  PROMISE(narrow[kCapacity - 1] == '\0' && narrow[kCapacity] == '#');
  const std::size_t length = std::strlen(narrow);
  PROMISE(text.compare(0, length, narrow) == 0);
  const CCpTransform transform;
  if (!transform.ConvertUTF8StringToUnicode(text).empty() && length != 0) {
    PROMISE(!transform.ConvertUTF8StringToUnicode(narrow).empty());
  }
  wchar_t wide[kCapacity + 1] = {};
  wide[kCapacity] = L'#';
  CopyWideToBuffer(Widen(text), text.size() % 40, wide, kCapacity);
  PROMISE(wide[kCapacity - 1] == L'\0' && wide[kCapacity] == L'#');
}

void CheckSplit(const std::string& text, const std::string& delimiters) {
  const auto kept = StringSplit(text, delimiters.c_str(), 1);
  const auto dropped = StringSplit(text, delimiters.c_str(), 0);
  std::size_t characters = 0;
  std::vector<std::string> not_empty;
  for (const std::string& piece : kept) {
    PROMISE(piece.find_first_of(delimiters.c_str()) == std::string::npos);
    characters += piece.size() + 1;
    if (!piece.empty()) not_empty.push_back(piece);
  }
  PROMISE(characters == text.size() || characters == text.size() + 1);
  PROMISE(dropped == not_empty);
}

void CheckNumber(const std::string& text) {
  int value = 0;
  char* end = nullptr;
  const long expected = std::strtol(text.c_str(), &end, 0);
  PROMISE(StringtoInt(text, value) == (*end == '\0'));
  PROMISE(value == (*end == '\0' ? static_cast<int>(expected) : -1));
}

void CheckBlanks(const std::string& text) {
  std::wstring deleted = Widen(text);
  std::wstring trimmed = deleted;
  DeleteBlankW(deleted);
  StringTrimW(trimmed);
  PROMISE(deleted.find(L' ') == std::wstring::npos);
  PROMISE(trimmed.empty() || (trimmed.front() != L' ' && trimmed.back() != L' '));
  DeleteBlankW(trimmed);
  PROMISE(trimmed == deleted);
}

void CheckPaths(const std::string& path) {
  const bool absolute = IsAbsolutePath(path);
  PROMISE(absolute || path.empty() || path[0] != '/');
  const std::string full = GetFileFullPath(path, FuzzDirectory());
  PROMISE(absolute ? full == path : full.empty() || full[0] == '/');
  PathFileExist(full);
  std::uint64_t bytes = 0;
  PROMISE(!GetRegularFileSize(full, bytes) || PathFileExist(full));
}

}  // namespace

void PrepareTarget() {}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  InputLines lines(data, size);
  const std::string delimiters(lines.Next());
  const std::string text(lines.Rest());
  CheckConversions(text);
  for (const int count :
       {-1, 0, static_cast<int>(text.size() / 2), static_cast<int>(text.size())}) {
    CheckParts(Widen(text), count);
  }
  CheckCopies(text);
  CheckSplit(text, delimiters);
  CheckNumber(text);
  CheckBlanks(text);
  CheckPaths(text);
}
