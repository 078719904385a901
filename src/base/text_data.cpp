// SPDX-License-Identifier: MIT
#include "base/text_data.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <string_view>

#include "base/environment_locale.h"
#include "base/string_util.h"
#include "base/text_lexer.h"

using namespace zvisp;

namespace {

// Results of FindNextBytes.
constexpr int kNoValue = 0;
constexpr int kValueFound = 1;
constexpr int kEndOfText = 6;

constexpr unsigned int kNoHexDigit = 16;
constexpr std::size_t kMaxLocaleBytesPerCharacter = 4;
constexpr std::size_t kMeasurementFailed = static_cast<std::size_t>(-1);
constexpr std::string_view kPlaceholder = "\"\"";

bool HasHexPrefix(std::wstring_view word) {
  return word.size() >= 2 && word[0] == L'0' && (word[1] == L'x' || word[1] == L'X');
}

bool IsDecimal(std::wstring_view word) {
  return word.find_first_not_of(L"0123456789") == std::wstring_view::npos;
}

// Words are plain ASCII, so a unit is a byte.
bool ReadNumber(std::wstring_view word, unsigned int& value) {
  std::string narrow(word.size(), '\0');
  std::transform(word.begin(), word.end(), narrow.begin(),
                 [](wchar_t unit) { return static_cast<char>(unit); });
  int number = 0;
  if (!StringtoInt(narrow, number)) return false;
  value = static_cast<unsigned int>(number);
  return true;
}

bool ReadValue(std::wstring_view word, const wchar_t* definitions, unsigned int& value) {
  if ((HasHexPrefix(word) || IsDecimal(word)) && ReadNumber(word, value)) return true;
  return definitions != nullptr &&
         GetDefineValue(std::wstring(word).c_str(), definitions, &value) == 1;
}

// False when something other than words, comments and "{" comes before the separator.
bool TakeSeparator(TextLexer& lexer) {
  while (!lexer.AtEnd()) {
    switch (lexer.Next()) {
      case TextToken::kComma:
      case TextToken::kLineEnd:
      case TextToken::kCloseBrace:
        return true;
      case TextToken::kNone:
        return false;
      default:
        break;
    }
  }
  return true;
}

int TakeValue(TextLexer& lexer, const wchar_t* definitions, unsigned int* value) {
  for (TextToken token = lexer.Next(); token != TextToken::kWord; token = lexer.Next()) {
    if (lexer.AtEnd()) return kEndOfText;
    if (token == TextToken::kNone) return kNoValue;
    if (token == TextToken::kCloseBrace) return kEndOfText;
  }
  unsigned int found = 0;
  if (!ReadValue(lexer.Word(), definitions, found) || !TakeSeparator(lexer)) return kNoValue;
  *value = found;
  return kValueFound;
}

unsigned int HexDigit(wchar_t character) {
  constexpr std::wstring_view kHexDigits = L"0123456789ABCDEFabcdef";
  const std::size_t index = kHexDigits.find(character);
  if (index == std::wstring_view::npos) return kNoHexDigit;
  return static_cast<unsigned int>(index < 16 ? index : index - 6);
}

// The locale text in `size` bytes, or with size 0 in as many as it needs, then a zero byte. The
// bytes that the text does not reach are zeros, so that no stale memory gets into a file. Nothing
// at all when a text that must be measured cannot be expressed in the locale.
std::vector<char> ToLocaleBytes(const wchar_t* text, std::size_t size) {
  std::mbstate_t state = {};
  const wchar_t* from = text;
  if (size == 0) size = std::wcsrtombs(nullptr, &from, 0, &state);
  if (size == kMeasurementFailed) return {};
  std::vector<char> bytes(size + 1);
  // Measuring changed neither `from` nor the state.
  static_cast<void>(std::wcsrtombs(bytes.data(), &from, size, &state));
  return bytes;
}

// Collects the texts between pairs of quotes, quotes included; false when one of them is empty.
// Kept quirk: the search starts after the first character, so a quote there never opens a text.
bool FindQuotedTexts(const std::string& line, std::vector<std::string>& quoted) {
  std::size_t open = line.find('"', 1);
  while (open != std::string::npos) {
    const std::size_t close = line.find('"', open + 1);
    if (close == std::string::npos) return true;
    if (close == open + 1) return false;
    quoted.push_back(line.substr(open, close + 1 - open));
    open = line.find('"', close + 1);
  }
  return true;
}

// Replaces the first occurrence only.
bool ReplaceFirst(std::string& text, std::string_view what, std::string_view with) {
  const std::size_t at = text.find(what);
  if (at == std::string::npos) return false;
  text.replace(at, what.size(), with);
  return true;
}

}  // namespace

int GetNextWord(const wchar_t* text, unsigned int& position, unsigned int length, wchar_t* word,
                unsigned int capacity) {
  TextLexer lexer({text, length}, position);
  const TextToken token = lexer.Next();
  position = static_cast<unsigned int>(lexer.Position());
  if (token == TextToken::kWord && capacity != 0) {
    const std::wstring_view found = lexer.Word();
    const std::size_t stored = found.size() > capacity ? capacity - 1 : found.size();
    std::fill_n(std::copy_n(found.begin(), stored, word), capacity - stored, L'\0');
  }
  return static_cast<int>(token);
}

int FindNextBytes(const wchar_t* text, unsigned int& position, unsigned int length,
                  const wchar_t* definitions, unsigned int* value) {
  if (position >= length) return kNoValue;
  TextLexer lexer({text, length}, position);
  const int result = TakeValue(lexer, definitions, value);
  position = static_cast<unsigned int>(lexer.Position());
  return result;
}

int GetDefineValue(const wchar_t* name, const wchar_t* definitions, unsigned int* value) {
  TextLexer lexer(definitions, 0);
  while (lexer.Next() != TextToken::kWord || lexer.Word() != name) {
    if (lexer.AtEnd()) return 0;
  }
  if (lexer.Next() != TextToken::kWord) return 0;
  const std::wstring digits(lexer.Word());
  if (HasHexPrefix(digits)) {
    *value = HexStrToInt(digits.c_str() + 2, static_cast<unsigned char>(digits.size() - 2));
    return 1;
  }
  return IsDecimal(digits) && ReadNumber(digits, *value) ? 1 : 0;
}

unsigned int EDIDToBin(const wchar_t* text, unsigned int length, unsigned char* output,
                       unsigned int capacity) {
  unsigned int count = 0;
  for (unsigned int position = 0; position < length;) {
    unsigned int value = 0;
    // Every call takes at least one token, so the loop ends.
    if (FindNextBytes(text, position, length, nullptr, &value) != kValueFound) continue;
    if (value > 255 || count == capacity) return 0;
    output[count++] = static_cast<unsigned char>(value);
  }
  return CalculateByteChecksum(output, count) % 256 == 0 ? count : 0;
}

unsigned int HexStrToInt(const wchar_t* digits, unsigned char count) {
  unsigned int value = 0;
  for (unsigned int i = 0; i < count; ++i) {
    const unsigned int digit = HexDigit(digits[i]);
    if (digit == kNoHexDigit) return 0;
    // The shift wraps at 32, where C++ leaves it undefined. So digits 8 places apart are added up.
    value += digit << (4 * (count - i - 1) % 32);
  }
  return value;
}

// The terminating zero is not a digit, so a string that is too short is never read past its end.
unsigned int HexStrToInt(const CCpZvString& digits, unsigned char count) {
  return HexStrToInt(digits.GetString(), count);
}

unsigned int ConvetStringToByteArry(const std::string& text, unsigned char* output,
                                    unsigned int maximum) {
  unsigned int count = 0;
  for (const std::string& piece : StringSplit(text, ",", 0)) {
    int value = 0;
    if (!StringtoInt(piece, value) || value < 0 || value > 255) return 0;
    output[count++] = static_cast<unsigned char>(value);
    // Compared after counting, so that a maximum of 0 never applies.
    if (count == maximum) return maximum;
  }
  return count;
}

unsigned int CalculateByteChecksum(const unsigned char* data, unsigned int length) {
  unsigned int sum = 0;
  for (unsigned int i = 0; i < length; ++i) {
    sum += data[i];
  }
  return sum;
}

unsigned short CalculateWordChecksum(const unsigned char* data, unsigned int length) {
  unsigned int sum = 0;
  for (unsigned int i = 0; i < length; ++i) {
    sum += static_cast<unsigned int>(data[i]) << (i % 2 == 0 ? 0 : 8);
  }
  return static_cast<unsigned short>(sum);
}

int CpZvSaveAnsiFile(const CCpZvString& path, const CCpZvString& text, unsigned int length,
                     int append) {
  ScopedEnvironmentLocale environment;
  std::FILE* const file = std::fopen(path.GetAnsiString(), append == 0 ? "w" : "a");
  if (file == nullptr) {
    // Kept quirk: a failure leaves the process in the environment's locale.
    environment.Keep();
    return 0;
  }
  const std::vector<char> bytes =
      ToLocaleBytes(text.GetString(), length * kMaxLocaleBytesPerCharacter);
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
  return 1;
}

int ParseCommandLineParameter(std::vector<std::string>& arguments, const std::string& line) {
  if (std::count(line.begin(), line.end(), '"') % 2 != 0) return 0;
  std::vector<std::string> quoted;
  if (!FindQuotedTexts(line, quoted)) return 0;
  std::string rest = line;
  for (const std::string& text : quoted) {
    // A placeholder has no blank, so the split below keeps each quoted text in one piece.
    ReplaceFirst(rest, text, kPlaceholder);
  }
  arguments = StringSplit(rest, " ", 0);
  auto next = quoted.begin();
  for (std::string& argument : arguments) {
    if (next == quoted.end()) return 1;
    const std::string_view inside = std::string_view(*next).substr(1, next->size() - 2);
    if (ReplaceFirst(argument, kPlaceholder, inside)) ++next;
  }
  return 1;
}
