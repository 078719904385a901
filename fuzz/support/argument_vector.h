// SPDX-License-Identifier: MIT
//
// An argument vector made of the lines of an input: one word a line, up to its first zero, as the
// system would hand it to a program. A line that is one zero is a null pointer.
#ifndef ZVISP_FUZZ_SUPPORT_ARGUMENT_VECTOR_H_
#define ZVISP_FUZZ_SUPPORT_ARGUMENT_VECTOR_H_

#include <memory>
#include <string_view>
#include <vector>

#include "support/fuzzing.h"

// A null word has a null data().
using Words = std::vector<std::string_view>;

class ArgumentVector {
 public:
  // Takes all lines that are left; the program's name goes before them.
  explicit ArgumentVector(InputLines& lines);
  ~ArgumentVector();
  ArgumentVector(const ArgumentVector&) = delete;
  ArgumentVector& operator=(const ArgumentVector&) = delete;

  int Count() const { return static_cast<int>(m_words.size()); }
  // The pointers in the order of the input, ended by a null one; valid until the next call.
  char** Fresh();

  // The words in the order of the input.
  const Words& Input() const { return m_words; }
  // The words in the order that the pointers have now.
  Words Order() const;
  // Whether the pointers are still those of the words, each once, and ended by a null one.
  bool IsReordered() const;
  // Whether the text begins inside a word or at its terminating zero.
  bool Holds(const char* text) const;

 private:
  void Add(std::string_view word, std::size_t& used);

  // All words, with gaps between them that a sanitizer guards.
  std::unique_ptr<char[]> m_block;
  std::size_t m_size;
  Words m_words;
  std::vector<char*> m_pointers;
};

#endif  // ZVISP_FUZZ_SUPPORT_ARGUMENT_VECTOR_H_
