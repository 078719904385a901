// SPDX-License-Identifier: MIT
//
// Values as bytes, for two processes of one build: a number in the machine's order, a text as its
// length and its bytes. Both classes are called with fields one after another, so one list of
// fields serves both ways.
#ifndef ZVISP_LINE_WORKER_WIRE_H_
#define ZVISP_LINE_WORKER_WIRE_H_

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace line {

template <typename Type>
concept PlainValue = std::is_arithmetic_v<Type>;

class ByteWriter {
 public:
  template <PlainValue Value>
  void operator()(Value& value) {
    m_bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void operator()(std::string& text) {
    auto length = static_cast<std::uint32_t>(text.size());
    (*this)(length);
    m_bytes += text;
  }
  template <PlainValue Value>
  void operator()(std::vector<Value>& values) {
    auto count = static_cast<std::uint32_t>(values.size());
    (*this)(count);
    for (Value value : values) {
      (*this)(value);
    }
  }

  void operator()(std::vector<std::string>& texts) {
    auto count = static_cast<std::uint32_t>(texts.size());
    (*this)(count);
    for (std::string& text : texts) {
      (*this)(text);
    }
  }

  std::string Take() { return std::move(m_bytes); }

 private:
  std::string m_bytes;
};

class ByteReader {
 public:
  // The bytes must outlive the reader.
  explicit ByteReader(std::string_view bytes) : m_left(bytes) {}

  template <PlainValue Value>
  void operator()(Value& value) {
    const std::string_view bytes = Next(sizeof value);
    if (bytes.size() == sizeof value) std::memcpy(&value, bytes.data(), sizeof value);
  }
  void operator()(bool& value) {
    std::uint8_t byte = 0;
    (*this)(byte);
    value = byte != 0;
  }
  void operator()(std::string& text) {
    std::uint32_t length = 0;
    (*this)(length);
    text = Next(length);
  }
  template <PlainValue Value>
  void operator()(std::vector<Value>& values) {
    std::uint32_t count = 0;
    (*this)(count);
    values.clear();
    while (m_good && values.size() < count) {
      Value value{};
      (*this)(value);
      values.push_back(value);
    }
  }

  void operator()(std::vector<std::string>& texts) {
    std::uint32_t count = 0;
    (*this)(count);
    texts.clear();
    while (m_good && texts.size() < count) {
      (*this)(texts.emplace_back());
    }
  }

  // True when every field was there and nothing is left.
  bool IsWhole() const { return m_good && m_left.empty(); }

 private:
  std::string_view Next(std::size_t count) {
    m_good = m_good && count <= m_left.size();
    if (!m_good) return {};
    const std::string_view bytes = m_left.substr(0, count);
    m_left.remove_prefix(count);
    return bytes;
  }

  std::string_view m_left;
  bool m_good = true;
};

}  // namespace line

#endif  // ZVISP_LINE_WORKER_WIRE_H_
