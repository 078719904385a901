// SPDX-License-Identifier: MIT
#include "base/transform.h"

#include <iconv.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <vector>

#include "base/environment_locale.h"

using namespace zvisp;

namespace {

// Room for converted text, terminating zero included. Longer text is refused, not cut: a path
// without its end would name another file.
constexpr std::size_t kConversionUnits = 10240;
constexpr std::size_t kConversionFailed = static_cast<std::size_t>(-1);

// Nearly every path is plain ASCII, and opening a converter loads a module from disk, which takes
// longer than the rest of a run's start. ASCII text has the same result without a converter.
template <typename Text>
bool IsShortAscii(const Text& text) {
  return text.size() < kConversionUnits && std::all_of(text.begin(), text.end(), [](auto unit) {
           return static_cast<unsigned int>(unit) - 1u < 0x7Fu;
         });
}

// Converts all of `text` into `buffer`, which is zeroed and one unit longer than the room given.
bool Convert(const char* to_code, const char* from_code, const char* text, std::size_t text_bytes,
             void* buffer, std::size_t room_bytes) {
  const iconv_t converter = iconv_open(to_code, from_code);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the system's own value for a failure
  if (converter == reinterpret_cast<iconv_t>(-1)) return false;
  // iconv reads its input only, but takes it as non-const.
  char* from = const_cast<char*>(text);
  char* to = static_cast<char*>(buffer);
  const std::size_t result = iconv(converter, &from, &text_bytes, &to, &room_bytes);
  iconv_close(converter);
  return result != kConversionFailed;
}

// The locale text of `text` with its terminating zero; empty when it cannot be converted.
std::vector<char> NarrowInEnvironmentLocale(const wchar_t* text) {
  const ScopedEnvironmentLocale environment;
  std::mbstate_t state = {};
  const wchar_t* from = text;
  const std::size_t length = std::wcsrtombs(nullptr, &from, 0, &state);
  if (length == kConversionFailed) return {};
  std::vector<char> narrow(length + 1);
  // Measuring changed neither `from` nor the state.
  if (std::wcsrtombs(narrow.data(), &from, length, &state) == kConversionFailed) return {};
  return narrow;
}

// Reads locale text into at most `room` wide units; empty when it cannot be converted, or when
// `room` is the result of a failed measurement. Even then the other categories have been switched.
std::wstring WidenInEnvironmentLocale(const char* text, std::size_t room) {
  const ScopedEnvironmentLocale environment;
  if (room == kConversionFailed) return {};
  std::vector<wchar_t> wide(room + 1);
  std::mbstate_t state = {};
  const std::size_t converted = std::mbsrtowcs(wide.data(), &text, room, &state);
  if (converted == kConversionFailed) return {};
  return std::wstring(wide.data(), converted);
}

}  // namespace

std::string CCpTransform::ConvertUnicodeStringToUTF8(const std::wstring& text) const {
  if (IsShortAscii(text)) {
    std::string narrow(text.size(), '\0');
    std::transform(text.begin(), text.end(), narrow.begin(),
                   [](wchar_t unit) { return static_cast<char>(unit); });
    return narrow;
  }
  char buffer[kConversionUnits] = {};
  if (!Convert("UTF-8", "UTF-32LE", reinterpret_cast<const char*>(text.data()),
               text.size() * sizeof(wchar_t), buffer, sizeof buffer - 1)) {
    return {};
  }
  return buffer;
}

std::wstring CCpTransform::ConvertUTF8StringToUnicode(const std::string& text) const {
  if (IsShortAscii(text)) return std::wstring(text.begin(), text.end());
  wchar_t buffer[kConversionUnits] = {};
  if (!Convert("UTF-32LE", "UTF-8", text.data(), text.size(), buffer,
               sizeof buffer - sizeof(wchar_t))) {
    return {};
  }
  return buffer;
}

std::wstring CCpTransform::ConvertStringToWString(const std::string& text) const {
  return ConvertUTF8StringToUnicode(text);
}

std::string CCpTransform::ConvertUnicodeStringToANSI(const std::wstring& text) const {
  return ConvertWCHARToANSIString(text.c_str());
}

std::string CCpTransform::ConvertWCHARToANSIString(const wchar_t* text) const {
  if (text == nullptr) return {};
  const std::vector<char> narrow = NarrowInEnvironmentLocale(text);
  return narrow.empty() ? std::string() : std::string(narrow.data());
}

char* CCpTransform::ConvertWCHARToCHAR(const wchar_t* text) const {
  if (text == nullptr) return nullptr;
  const std::vector<char> narrow = NarrowInEnvironmentLocale(text);
  if (narrow.empty()) return nullptr;
  char* const owned = new char[narrow.size()];
  std::copy(narrow.begin(), narrow.end(), owned);
  return owned;
}

std::wstring CCpTransform::ConvertANSIStringToUnicode(const std::string& text) const {
  std::mbstate_t state = {};
  const char* from = text.c_str();
  return WidenInEnvironmentLocale(text.c_str(), std::mbsrtowcs(nullptr, &from, 0, &state));
}

std::wstring CCpTransform::ConvertCHARToUnicodeString(const char* text) const {
  if (text == nullptr) return {};
  // Four wide units a byte are more than any encoding needs, so nothing is measured.
  return WidenInEnvironmentLocale(text, 4 * std::strlen(text));
}
