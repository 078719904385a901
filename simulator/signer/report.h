// SPDX-License-Identifier: MIT
//
// What the signer tells the operator: one line on standard output, opened by its name.
#ifndef ZVISP_SIMULATOR_SIGNER_REPORT_H_
#define ZVISP_SIMULATOR_SIGNER_REPORT_H_

namespace signer {

// Prints why a request is refused. Always returns false, so that a check can end with it.
[[gnu::format(printf, 1, 2)]] bool Refuse(const char* format, ...);

// Prints something that the operator should know although the request continues.
[[gnu::format(printf, 1, 2)]] void Note(const char* format, ...);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_REPORT_H_
