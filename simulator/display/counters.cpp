// SPDX-License-Identifier: MIT
#include "display/counters.h"

#include <fcntl.h>

#include <cstdio>

#include "display/format.h"
#include "display/outcome.h"

namespace simulator {
namespace {

// Of a line as LineOf writes it: three columns of 3, 10 and 10 digits, two blanks and a newline.
constexpr std::size_t kLineBytes = 26;
constexpr std::size_t kFileBytes = kLineBytes * kBankCount;

std::string LineOf(std::uint32_t bank, const BankCount& count) {
  return Format("%3u %10u %10u\n", bank, count.erases, count.writes);
}

BankCount ParseLine(const std::string& line, std::uint32_t bank) {
  std::uint32_t number = 0;
  BankCount count;
  const int read = std::sscanf(line.c_str(), "%u %u %u", &number, &count.erases, &count.writes);
  return read == 3 && number == bank ? count : BankCount{};
}

}  // namespace

bool Counters::Open(const std::string& path) {
  m_file = OpenWithoutLink(path, O_RDWR | O_CREAT);
  // A new or shorter file leaves blanks here, which read as counts of 0.
  std::string text(kFileBytes, ' ');
  if (!m_file.IsOpen() || ReadAt(m_file.Get(), text.data(), text.size(), 0) < 0) return false;

  std::string sound;
  for (std::uint32_t bank = 0; bank < kBankCount; ++bank) {
    m_counts[bank] = ParseLine(text.substr(bank * kLineBytes, kLineBytes), bank);
    sound += LineOf(bank, m_counts[bank]);
  }
  // A sound file is left alone, so that a call that programs nothing writes nothing.
  return sound == text || WriteAt(m_file.Get(), sound.data(), sound.size(), 0);
}

bool Counters::CountErase(std::uint32_t bank) {
  ++m_counts[bank].erases;
  return Store(bank);
}

bool Counters::CountWrite(std::uint32_t bank) {
  ++m_counts[bank].writes;
  return Store(bank);
}

bool Counters::Store(std::uint32_t bank) {
  const std::string line = LineOf(bank, m_counts[bank]);
  return WriteAt(m_file.Get(), line.data(), line.size(), static_cast<off_t>(bank * kLineBytes));
}

}  // namespace simulator
