// SPDX-License-Identifier: MIT
//
// The profile reader and writer. Input: lines with the section, the key and a value, then a file.
//
// Promises: a value that is read is terminated within its buffer and as long as the reader says;
// where nothing is read, the buffer holds the default or what it held before; writing the same
// value twice gives the same file; several keys at once give the file that key by key gives; in a
// plain file without that key, what is written is read back, by both families; and in a 7-bit file
// what is read is what support/profile_model.h reads.
#include <algorithm>
#include <cstring>
#include <cwchar>

#include "settings/profile.h"
#include "support/fuzzing.h"
#include "support/memory_files.h"
#include "support/profile_model.h"

using namespace zvisp;

namespace {

constexpr std::size_t kLongestPlainText = 200;

struct Entry {
  std::string section, key, value;
};

const std::string& File() {
  static const std::string file = "/profile.ini";
  return file;
}

std::wstring ReadWide(const Entry& entry) {
  wchar_t output[kProfileValueCapacity];
  std::wmemset(output, L'#', kProfileValueCapacity);
  const unsigned int length = CpZvGetPrivateProfileStringW(
      Widen(entry.section).c_str(), Widen(entry.key).c_str(), L"default", output,
      kProfileValueCapacity, Widen(File()).c_str());
  PROMISE(length < kProfileValueCapacity);
  if (length != 0) {
    PROMISE(output[length] == L'\0');
    return std::wstring(output, length);
  }
  PROMISE(output[0] == L'#' || output[0] == L'\0' || std::wcscmp(output, L"default") == 0);
  return L"";
}

std::string ReadNarrow(const Entry& entry) {
  char output[kProfileValueCapacity];
  std::memset(output, '#', kProfileValueCapacity);
  const unsigned int length =
      CpZvGetPrivateProfileStringA(entry.section.c_str(), entry.key.c_str(), "default", output,
                                   kProfileValueCapacity, File().c_str());
  PROMISE(length < kProfileValueCapacity);
  if (length == 0) return "";
  PROMISE(output[length] == '\0');
  return std::string(output, length);
}

int WriteWide(const Entry& entry) {
  return CpZvWritePrivateProfileStringW(Widen(entry.section).c_str(), Widen(entry.key).c_str(),
                                        Widen(entry.value).c_str(), Widen(File()).c_str());
}

int WriteNarrow(const Entry& entry) {
  return CpZvWritePrivateProfileStringA(entry.section.c_str(), entry.key.c_str(),
                                        entry.value.c_str(), File().c_str());
}

// Text that is in a line as it is: no blanks, nothing with a meaning of its own.
bool IsPlainName(const std::string& text) {
  return !text.empty() && text.size() < kLongestPlainText && IsPlain(text) &&
         text.find_first_of(" =[]") == std::string::npos;
}

bool HasLongLine(const std::string& content) {
  std::size_t start = 0;
  for (std::size_t end = content.find('\n'); end != std::string::npos;
       end = content.find('\n', start)) {
    if (end - start > kLongestPlainText) return true;
    start = end + 1;
  }
  return content.size() - start > kLongestPlainText;
}

bool IsReadBack(const Entry& entry, const std::string& content) {
  return IsPlainName(entry.section) && IsPlainName(entry.key) && IsPlainName(entry.value) &&
         IsPlain(content, "\n") && !HasLongLine(content) &&
         content.find(entry.key) == std::string::npos;
}

bool HasModel(const Entry& entry, const std::string& content) {
  return IsSevenBit(entry.section) && IsSevenBit(entry.key) && IsSevenBit(content);
}

void CheckWide(const Entry& entry, const std::string& content) {
  GivenMemoryFile(File(), content);
  const std::wstring value = ReadWide(entry);
  PROMISE(!HasModel(entry, content) ||
          value == Widen(ModelProfileValue(entry.section, entry.key, content)));
  CpZvGetPrivateProfileIntW(Widen(entry.section).c_str(), Widen(entry.key).c_str(), 5,
                            Widen(File()).c_str());
  if (WriteWide(entry) == 0) {
    PROMISE(MemoryFile(File()) == content);
    return;
  }
  if (IsReadBack(entry, content)) {
    PROMISE(ReadWide(entry) == Widen(entry.value));
    const std::string written = MemoryFile(File());
    PROMISE(WriteWide(entry) == 1);
    PROMISE(MemoryFile(File()) == written);
  }
}

// The same file, at once and key by key. The value is a key, too, so that keys are as odd as
// values.
void CheckChanges(const Entry& entry, const std::string& content) {
  const std::wstring key = Widen(entry.key);
  const std::wstring value = Widen(entry.value);
  const std::vector<ProfileChange<std::wstring>> changes = {
      {key, value}, {value, key}, {L"k", value}, {key, L"v"}};
  GivenMemoryFile(File(), content);
  WriteProfileChanges(Widen(entry.section).c_str(), changes, Widen(File()).c_str());
  const std::string at_once = MemoryFile(File());
  GivenMemoryFile(File(), content);
  for (const auto& change : changes) {
    CpZvWritePrivateProfileStringW(Widen(entry.section).c_str(), change.key.c_str(),
                                   change.value.c_str(), Widen(File()).c_str());
  }
  PROMISE(MemoryFile(File()) == at_once);
}

// The narrow family never returns from a line with a blank, so it is given none.
void CheckNarrow(Entry entry, std::string content) {
  for (std::string* const text : {&entry.section, &entry.key, &entry.value, &content}) {
    text->erase(std::remove(text->begin(), text->end(), ' '), text->end());
  }
  GivenMemoryFile(File(), content);
  const std::string value = ReadNarrow(entry);
  PROMISE(!HasModel(entry, content) ||
          value == ModelProfileValue(entry.section, entry.key, content));
  CpZvGetPrivateProfileIntA(entry.section.c_str(), entry.key.c_str(), 5, File().c_str());
  PROMISE(WriteNarrow(entry) == 1);
  if (IsReadBack(entry, content)) {
    PROMISE(ReadNarrow(entry) == entry.value);
  }
}

// A text is handed to C functions, so a zero ends it.
std::string NextText(InputLines& lines) {
  const std::string_view line = lines.Next();
  return std::string(line.substr(0, line.find('\0')));
}

}  // namespace

void PrepareTarget() {}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  InputLines lines(data, size);
  Entry entry;
  entry.section = NextText(lines);
  entry.key = NextText(lines);
  entry.value = NextText(lines);
  const std::string content(lines.Rest());
  CheckWide(entry, content);
  CheckChanges(entry, content);
  CheckNarrow(entry, content);
  PROMISE(OpenMemoryStreams() == 0);
}
