// SPDX-License-Identifier: MIT
#include "settings/profile_family.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <locale>
#include <stdexcept>

#include "base/environment_locale.h"
#include "base/string_util.h"
#include "base/transform.h"

namespace {

using Codec = std::codecvt<wchar_t, char, std::mbstate_t>;

// The encoding of a named locale, which remembers how its last reading ended: at the end of a file
// anything but whole characters means that the file ended in bytes that are no text.
class RememberingCodec final : public std::codecvt_byname<wchar_t, char, std::mbstate_t> {
 public:
  explicit RememberingCodec(const char* name) : codecvt_byname(name) {}
  bool Succeeded() const { return m_succeeded; }

 protected:
  result do_in(std::mbstate_t& state, const char* from, const char* from_end,
               const char*& from_next, wchar_t* to, wchar_t* to_end,
               wchar_t*& to_next) const override {
    const result last =
        codecvt_byname::do_in(state, from, from_end, from_next, to, to_end, to_next);
    // The first bytes of a character may count as read, and are then kept in the state.
    m_succeeded = last == ok && std::mbsinit(&state) != 0;
    return last;
  }

 private:
  mutable bool m_succeeded = true;
};

// Owned by the locale it is put into.
RememberingCodec* MakeEnvironmentCodec() {
  const ScopedEnvironmentLocale environment;
  try {
    return new RememberingCodec(environment.Name());
  } catch (const std::runtime_error&) {
    // The C++ runtime may refuse a name that the C library knows.
    return new RememberingCodec("C");
  }
}

}  // namespace

std::string WideFamily::FileName(const wchar_t* name) {
  return CCpTransform().ConvertUnicodeStringToANSI(name);
}

void WideFamily::Prepare(std::wios& stream) {
  stream.imbue(std::locale(std::locale::classic(), MakeEnvironmentCodec()));
}

bool WideFamily::EndedInBadText(const std::wios& stream) {
  const std::locale locale = stream.getloc();
  const auto* codec = dynamic_cast<const RememberingCodec*>(&std::use_facet<Codec>(locale));
  return codec != nullptr && !codec->Succeeded();
}

bool WideFamily::CanBeWritten(const wchar_t* text) {
  return *text == L'\0' || !CCpTransform().ConvertWCHARToANSIString(text).empty();
}

void WideFamily::TrimLine(std::wstring& line) {
  StringTrimW(line);
}

void WideFamily::TrimKeyPart(std::wstring& part) {
  StringTrimW(part);
}

long long WideFamily::ParseInt(const wchar_t* text) {
  return std::wcstoll(text, nullptr, 0);
}

void NarrowFamily::TrimLine(std::string& line) {
  DeleteBlankA(line);
}

void NarrowFamily::ReportUnreadableFile() {
  std::printf("Error \n");
}

long long NarrowFamily::ParseInt(const char* text) {
  return std::strtoll(text, nullptr, 0);
}
