// SPDX-License-Identifier: MIT
#include "signer/signature_file.h"

#include "signer/hex.h"
#include "signer/input_file.h"
#include "signer/report.h"

namespace signer {
namespace {

constexpr char kRole[] = "signature";
constexpr std::string_view kTitle = "Zorvane firmware signature ";
constexpr std::string_view kVersion = "1";
constexpr std::string_view kType = "type: ";
constexpr std::string_view kNextVerifyKey = "next verify key: ";
constexpr std::string_view kNone = "none";
constexpr std::string_view kSignature = "signature: ";

std::string_view NameOf(SignatureType type) {
  return type == SignatureType::kSoftware ? "software" : "hardware";
}

std::string Line(std::string_view title, std::string_view value) {
  return std::string(title) + std::string(value) + "\n";
}

// Takes the next line off the text and gives what comes after its title.
bool TakeLine(std::string_view& text, std::string_view title, std::string_view& value) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos || text.substr(0, title.size()) != title) return false;
  value = text.substr(title.size(), end - title.size());
  text.remove_prefix(end + 1);
  return true;
}

bool ParseType(std::string_view name, SignatureType& type) {
  for (const SignatureType candidate : {SignatureType::kSoftware, SignatureType::kHardware}) {
    if (name != NameOf(candidate)) continue;
    type = candidate;
    return true;
  }
  return false;
}

bool ParseNextVerifyKey(std::string_view text, std::optional<VerifyKey>& key) {
  key.reset();
  return text == kNone || FromHex(text, key.emplace().data(), kKeyBytes);
}

bool ParseFields(std::string_view text, Signature& signature) {
  // One order, one spelling, nothing after the last line. So no byte of the file can change without
  // a refusal, the signature's own line included.
  std::string_view type, next_verify_key, value;
  return TakeLine(text, kType, type) && TakeLine(text, kNextVerifyKey, next_verify_key) &&
         TakeLine(text, kSignature, value) && text.empty() && ParseType(type, signature.type) &&
         ParseNextVerifyKey(next_verify_key, signature.next_verify_key) &&
         FromHex(value, signature.value.data(), signature.value.size());
}

}  // namespace

std::string SignedLines(const Signature& signature) {
  const std::optional<VerifyKey>& next = signature.next_verify_key;
  return Line(kTitle, kVersion) + Line(kType, NameOf(signature.type)) +
         Line(kNextVerifyKey, next ? ToHex(next->data(), next->size()) : std::string(kNone));
}

std::string FormatSignatureFile(const Signature& signature) {
  return SignedLines(signature) +
         Line(kSignature, ToHex(signature.value.data(), signature.value.size()));
}

bool IsSignatureText(std::string_view text) {
  return text.substr(0, kTitle.size()) == kTitle;
}

bool ReadSignatureFile(const std::string& path, Signature& signature) {
  WipedBytes content;
  if (!ReadSmallFile(kRole, path, content)) return false;
  std::string_view text = content.Text();
  std::string_view version;
  if (!TakeLine(text, kTitle, version))
    return Refuse("this is not a signature file: %s", path.c_str());
  // Apart from damage, because a newer signer may have written the file.
  if (version != kVersion) {
    return Refuse("the signature file has another version than 1: %s", path.c_str());
  }
  if (ParseFields(text, signature)) return true;
  return Refuse("the signature file is damaged: %s", path.c_str());
}

}  // namespace signer
