// SPDX-License-Identifier: MIT
#include "support/argument_vector.h"

#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::string_view kProgram = "zvisp";

#if __has_feature(address_sanitizer)
// The unit in which the sanitizer guards memory, and one of them as a gap.
constexpr std::size_t kGuardUnit = 8;
constexpr std::size_t kGap = 8;
#else
constexpr std::size_t kGuardUnit = 1;
constexpr std::size_t kGap = 0;
#endif
// What a word takes at most besides its characters.
constexpr std::size_t kOverhead = 1 + kGuardUnit + kGap;

constexpr std::string_view kNullWord("\0", 1);

}  // namespace

ArgumentVector::ArgumentVector(InputLines& lines) {
  Words words = {kProgram};
  std::size_t room = kProgram.size() + kOverhead;
  while (!lines.AtEnd()) {
    const std::string_view line = lines.Next();
    words.push_back(line == kNullWord ? std::string_view() : line.substr(0, line.find('\0')));
    if (words.back().data() == nullptr && line != kNullWord) words.back() = "";
    room += line.size() + kOverhead;
  }
  m_size = room;
  m_block.reset(new char[room]);
  std::size_t used = 0;
  for (const std::string_view word : words)
    Add(word, used);
}

ArgumentVector::~ArgumentVector() {
  ASAN_UNPOISON_MEMORY_REGION(m_block.get(), m_size);
}

void ArgumentVector::Add(std::string_view word, std::size_t& used) {
  if (word.data() == nullptr) {
    m_words.emplace_back();
    return;
  }
  char* const copy = m_block.get() + used;
  std::memcpy(copy, word.data(), word.size());
  copy[word.size()] = '\0';
  m_words.emplace_back(copy, word.size());
  const std::size_t end = used + word.size() + 1;
  used = (end + kGap + kGuardUnit - 1) / kGuardUnit * kGuardUnit;
  ASAN_POISON_MEMORY_REGION(m_block.get() + end, used - end);
}

char** ArgumentVector::Fresh() {
  m_pointers.clear();
  for (const std::string_view word : m_words)
    m_pointers.push_back(const_cast<char*>(word.data()));
  m_pointers.push_back(nullptr);
  return m_pointers.data();
}

Words ArgumentVector::Order() const {
  Words order;
  for (auto pointer = m_pointers.begin(); pointer != m_pointers.end() - 1; ++pointer)
    order.push_back(*pointer == nullptr ? std::string_view() : std::string_view(*pointer));
  return order;
}

bool ArgumentVector::IsReordered() const {
  if (m_pointers.back() != nullptr) return false;
  std::vector<const char*> before;
  for (const std::string_view word : m_words)
    before.push_back(word.data());
  std::vector<const char*> after(m_pointers.begin(), m_pointers.end() - 1);
  std::sort(before.begin(), before.end());
  std::sort(after.begin(), after.end());
  return before == after;
}

// The words fill the block, so whatever is in it is in a word; only a sanitizer's gaps are not.
bool ArgumentVector::Holds(const char* text) const {
  return text >= m_block.get() && text < m_block.get() + m_size;
}
