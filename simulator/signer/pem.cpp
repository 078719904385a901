// SPDX-License-Identifier: MIT
#include "signer/pem.h"

#include <openssl/evp.h>

#include <algorithm>
#include <string>

#include "signer/report.h"

namespace signer {
namespace {

constexpr std::size_t kLineDigits = 64;
constexpr std::size_t kShownLabelLimit = 40;
constexpr std::string_view kBegin = "-----BEGIN ";
constexpr std::string_view kDashes = "-----\n";

std::string Frame(const char* side, std::string_view label) {
  return std::string("-----") + side + " " + std::string(label) + "-----\n";
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (text.substr(0, prefix.size()) != prefix) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool TakeSuffix(std::string_view& text, std::string_view suffix) {
  if (text.size() < suffix.size() || text.substr(text.size() - suffix.size()) != suffix) {
    return false;
  }
  text.remove_suffix(suffix.size());
  return true;
}

// The label of the block that the text opens with, for the operator's eye; empty when there is
// none.
std::string ShownLabel(std::string_view text) {
  if (!TakePrefix(text, kBegin)) return "";
  std::string label(text.substr(0, std::min(text.find(kDashes), kShownLabelLimit)));
  const bool printable =
      std::all_of(label.begin(), label.end(), [](char c) { return c >= ' ' && c <= '~'; });
  return printable ? label : "";
}

// Joins the lines of digits. Returns how many digits there are, 0 when a line has another length.
std::size_t JoinLines(std::string_view lines, unsigned char* digits) {
  std::size_t count = 0;
  while (!lines.empty()) {
    const std::size_t length = lines.find('\n');
    const bool last = length + 1 == lines.size();
    if (length == std::string_view::npos || length == 0 || length > kLineDigits ||
        (length < kLineDigits && !last)) {
      return 0;
    }
    std::copy_n(lines.begin(), length, digits + count);
    count += length;
    lines.remove_prefix(length + 1);
  }
  return count;
}

std::size_t PaddingOf(const unsigned char* digits, std::size_t count) {
  if (digits[count - 1] != '=') return 0;
  return digits[count - 2] == '=' ? 2 : 1;
}

// Decodes, and encodes again to see that the digits are the only way to write these bytes.
bool DecodeDigits(const unsigned char* digits, std::size_t count, WipedBytes& der) {
  if (count == 0 || count % 4 != 0) return false;
  WipedBytes decoded(count / 4 * 3);
  if (EVP_DecodeBlock(decoded.Data(), digits, static_cast<int>(count)) < 0) return false;
  // The decoder counts the bytes of the padding, too.
  der = WipedBytes(decoded.Size() - PaddingOf(digits, count));
  std::copy_n(decoded.Data(), der.Size(), der.Data());
  WipedBytes encoded(count + 1);
  const int written = EVP_EncodeBlock(encoded.Data(), der.Data(), static_cast<int>(der.Size()));
  return static_cast<std::size_t>(written) == count &&
         std::equal(digits, digits + count, encoded.Data());
}

}  // namespace

bool DecodePem(const char* role, std::string_view text, std::string_view label, WipedBytes& der) {
  std::string_view lines = text;
  if (!TakePrefix(lines, Frame("BEGIN", label))) {
    const std::string found = ShownLabel(text);
    return Refuse("the %s is not PEM text \"%.*s\"%s%s%s", role, static_cast<int>(label.size()),
                  label.data(), found.empty() ? "" : " but \"", found.c_str(),
                  found.empty() ? "" : "\"");
  }
  if (!TakeSuffix(lines, Frame("END", label))) {
    return Refuse("the %s is cut short, or has something after its PEM block", role);
  }
  WipedBytes digits(lines.size() + 1);
  if (DecodeDigits(digits.Data(), JoinLines(lines, digits.Data()), der)) return true;
  return Refuse("the %s is not written in the canonical PEM form", role);
}

}  // namespace signer
