// SPDX-License-Identifier: MIT
#include "line/job/address_range.h"

#include <charconv>
#include <system_error>

namespace line {

namespace {

// The record counts addresses in 32 bits.
constexpr std::uint64_t kFlashEnd = std::uint64_t{1} << 32;

std::optional<std::uint64_t> NumberIn(std::string_view text) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint64_t value = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<AddressRange> ParseAddressRange(std::string_view text) {
  const std::size_t dash = text.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto first = NumberIn(text.substr(0, dash));
  const auto last = NumberIn(text.substr(dash + 1));
  if (!first || !last || *last < *first || *last >= kFlashEnd) return std::nullopt;
  return AddressRange{*first, *last};
}

}  // namespace line
