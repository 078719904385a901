// SPDX-License-Identifier: MIT
#include "display/identity.h"

#include "display/format.h"
#include "display/key_values.h"

namespace simulator {
namespace {

// An unknown key is refused: a slip in its name would leave the default without a word.
bool ApplyLine(std::string_view line, Identity& identity) {
  const auto pair = SplitKeyValue(line);
  if (!pair) return false;
  if (pair->key == "version") {
    identity.version = pair->value;
  } else if (pair->key == "user_info") {
    identity.user_info = pair->value;
  } else if (pair->key == "scaler_type" && ParseNumber(pair->value)) {
    identity.scaler_type = *ParseNumber(pair->value);
  } else {
    return false;
  }
  return true;
}

}  // namespace

Outcome ParseIdentity(std::string_view text, Identity& identity) {
  for (const TextLine& line : SplitLines(text)) {
    if (ApplyLine(line.text, identity)) continue;
    return Refuse(Code::kSettings, Format("line %u of its identity file is illegal", line.number));
  }
  return Done();
}

}  // namespace simulator
