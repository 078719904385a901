// SPDX-License-Identifier: MIT
//
// Bytes on the heap that are wiped before they are given back. Everything that the signer reads is
// held so: a private key may be in any file that an operator names.
#ifndef ZVISP_SIMULATOR_SIGNER_WIPED_BYTES_H_
#define ZVISP_SIMULATOR_SIGNER_WIPED_BYTES_H_

#include <openssl/crypto.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace signer {

class WipedBytes {
 public:
  WipedBytes() = default;
  // So many bytes of no particular value.
  explicit WipedBytes(std::size_t size) : m_bytes(new unsigned char[size]), m_size(size) {}
  ~WipedBytes() { Wipe(); }
  WipedBytes(WipedBytes&& other) noexcept
      : m_bytes(std::move(other.m_bytes)), m_size(std::exchange(other.m_size, 0)) {}
  WipedBytes& operator=(WipedBytes&& other) noexcept {
    std::swap(m_bytes, other.m_bytes);
    std::swap(m_size, other.m_size);
    return *this;
  }

  unsigned char* Data() { return m_bytes.get(); }
  const unsigned char* Data() const { return m_bytes.get(); }
  std::size_t Size() const { return m_size; }
  // Valid as long as the bytes.
  std::string_view Text() const {
    return std::string_view(reinterpret_cast<const char*>(m_bytes.get()), m_size);
  }

 private:
  void Wipe() {
    if (m_size != 0) OPENSSL_cleanse(m_bytes.get(), m_size);
  }

  std::unique_ptr<unsigned char[]> m_bytes;
  std::size_t m_size = 0;
};

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_WIPED_BYTES_H_
