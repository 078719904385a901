// SPDX-License-Identifier: MIT
//
// SHA-256, as 64 hexadecimal digits. The sources sha256_*.cpp are the only ones that know the
// platform's library.
#ifndef ZVISP_LINE_JOB_SHA256_H_
#define ZVISP_LINE_JOB_SHA256_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace line {

class Sha256 {
 public:
  Sha256();
  ~Sha256();
  Sha256(const Sha256&) = delete;
  Sha256& operator=(const Sha256&) = delete;

  void Add(const void* bytes, std::size_t count);
  // Of everything that was added. Starts anew.
  std::string Take();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

// Of a whole ordinary file; nothing when it cannot be read.
std::optional<std::string> Sha256OfFile(const std::string& path);

}  // namespace line

#endif  // ZVISP_LINE_JOB_SHA256_H_
