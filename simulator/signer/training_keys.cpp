// SPDX-License-Identifier: MIT
#include "signer/training_keys.h"

#include <string>

#include "signer/library.h"
#include "signer/report.h"

namespace signer {
namespace {

constexpr int kPairs = 5;

}  // namespace

bool TakeTrainingKey(int index, KeyHandle& key) {
  if (index < 0 || index >= kPairs) {
    return Refuse("there is no training key pair %d, only 0 to %d", index, kPairs - 1);
  }
  // Derived from a public sentence: nobody can take such a key for a secret one.
  const std::string name = "Zorvane training key pair " + std::to_string(index);
  const std::string text = name + ", never for production";
  unsigned char seed[kKeyBytes];
  if (EVP_Q_digest(Library::Context(), "SHA256", nullptr, text.data(), text.size(), seed,
                   nullptr) == 1) {
    key = SignKeyFromSeed(seed);
  }
  if (key == nullptr) return Refuse("training key pair %d cannot be used", index);
  Note("training key pair %d, never for production", index);
  return true;
}

}  // namespace signer
