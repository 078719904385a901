// SPDX-License-Identifier: MIT
//
// The text data utilities. Input: a line with a name, a line with definitions, then a text.
//
// Promises: a walk over tokens or values moves on and ends at the end; nothing is written past an
// output; bytes that are accepted sum up to zero and convert back; a command line without quotes
// is split at its blanks, and one with an odd number of them is refused.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/string_util.h"
#include "base/text_data.h"
#include "support/fuzzing.h"

namespace {

constexpr unsigned int kWordCapacity = 16;
constexpr unsigned int kByteCapacity = 64;
constexpr wchar_t kWideCanary = L'\x5A5A';
constexpr unsigned char kCanary = 0x5A;

// Exactly the text, so that a sanitizer sees a read past its length.
struct Text {
  explicit Text(const std::wstring& text)
      : units(std::make_unique<wchar_t[]>(text.size())),
        length(static_cast<unsigned int>(text.size())) {
    std::copy(text.begin(), text.end(), units.get());
  }
  std::unique_ptr<wchar_t[]> units;
  unsigned int length;
};

void CheckWords(const Text& text) {
  for (unsigned int position = 0; position < text.length;) {
    wchar_t word[kWordCapacity + 1] = {};
    word[kWordCapacity] = kWideCanary;
    const unsigned int before = position;
    const int kind = GetNextWord(text.units.get(), position, text.length, word, kWordCapacity);
    PROMISE(kind >= 0 && kind <= 6);
    PROMISE(position > before && position <= text.length);
    PROMISE(word[kWordCapacity] == kWideCanary);
    if (kind != 1) continue;
    const unsigned int stored =
        static_cast<unsigned int>(std::find(word, word + kWordCapacity, L'\0') - word);
    PROMISE(stored >= 1);
    PROMISE(stored < kWordCapacity || text.units[position - stored] == word[0]);
  }
}

void CheckValues(const Text& text, const wchar_t* definitions) {
  for (unsigned int position = 0; position < text.length;) {
    const unsigned int before = position;
    unsigned int value = 0xABCD;
    const int result = FindNextBytes(text.units.get(), position, text.length, definitions, &value);
    PROMISE(result == 0 || result == 1 || result == 6);
    PROMISE(result == 1 || value == 0xABCD);
    PROMISE(position > before && position <= text.length);
  }
}

void CheckEdid(const Text& text) {
  unsigned char bytes[kByteCapacity + 1];
  std::memset(bytes, kCanary, sizeof bytes);
  const unsigned int count = EDIDToBin(text.units.get(), text.length, bytes, kByteCapacity);
  PROMISE(count <= kByteCapacity);
  PROMISE(bytes[kByteCapacity] == kCanary);
  PROMISE(CalculateByteChecksum(bytes, count) % 256 == 0);
  std::wstring list;
  for (unsigned int i = 0; i < count; ++i) {
    list += std::to_wstring(bytes[i]) + L",";
  }
  const Text again(list);
  unsigned char same[kByteCapacity];
  PROMISE(EDIDToBin(again.units.get(), again.length, same, kByteCapacity) == count);
  PROMISE(std::equal(same, same + count, bytes));
}

void CheckDefinition(const std::wstring& name, const std::wstring& definitions) {
  unsigned int value = 0xABCD;
  const int found = GetDefineValue(name.c_str(), definitions.c_str(), &value);
  PROMISE(found == 1 || (found == 0 && value == 0xABCD));
  PROMISE(found == 0 || definitions.find(name.c_str()) != std::wstring::npos);
}

void CheckHex(const std::string& digits) {
  const bool plain = digits.size() <= 8 && !digits.empty() &&
                     digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
  const auto count = static_cast<unsigned char>(std::min<std::size_t>(digits.size(), 255));
  CCpZvString text;
  text = Widen(digits);
  const unsigned int value = HexStrToInt(text, count);
  PROMISE(!plain || value == std::strtoul(digits.c_str(), nullptr, 16));
  PROMISE(HexStrToInt(text, 255) == 0 || digits.size() >= 255);
}

void CheckByteList(const std::string& text) {
  unsigned char bytes[kByteCapacity + 1];
  std::memset(bytes, kCanary, sizeof bytes);
  const unsigned int count = ConvetStringToByteArry(text, bytes, kByteCapacity);
  PROMISE(count <= kByteCapacity);
  PROMISE(count <= StringSplit(text, ",", 0).size());
  PROMISE(bytes[kByteCapacity] == kCanary);
}

void CheckCommandLine(const std::string& line) {
  std::vector<std::string> arguments = {"untouched"};
  const int parsed = ParseCommandLineParameter(arguments, line);
  const auto quotes = std::count(line.begin(), line.end(), '"');
  PROMISE(parsed == 0 || quotes % 2 == 0);
  PROMISE(parsed == 1 || (quotes != 0 && arguments == std::vector<std::string>{"untouched"}));
  PROMISE(quotes != 0 || arguments == StringSplit(line, " ", 0));
}

}  // namespace

void PrepareTarget() {}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  InputLines lines(data, size);
  const std::string name(lines.Next());
  const std::wstring definitions = Widen(lines.Next());
  const std::string rest(lines.Rest());
  const Text text(Widen(rest));
  CheckWords(text);
  CheckValues(text, nullptr);
  CheckValues(text, definitions.c_str());
  CheckEdid(text);
  CheckDefinition(Widen(name), definitions);
  CheckDefinition(Widen(name), Widen(rest));
  CheckHex(name);
  CheckByteList(rest);
  CheckCommandLine(rest);
}
