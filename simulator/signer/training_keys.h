// SPDX-License-Identifier: MIT
//
// The five built-in key pairs, for training and tests only: whoever reads this file can sign with
// them. Never for production.
#ifndef ZVISP_SIMULATOR_SIGNER_TRAINING_KEYS_H_
#define ZVISP_SIMULATOR_SIGNER_TRAINING_KEYS_H_

#include "signer/keys.h"

namespace signer {

// Gives a pair by its index 0..4, and prints that it is for training only. The secret of pair N is
// the SHA-256 of "Zorvane training key pair N, never for production".
bool TakeTrainingKey(int index, KeyHandle& key);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_TRAINING_KEYS_H_
