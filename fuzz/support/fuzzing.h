// SPDX-License-Identifier: MIT
//
// What the fuzz targets share: the frame around every input, the way from an input to texts, a
// directory to put files in, and checks that end the process, which is how a fuzzer learns of a
// broken promise.
//
// The frame makes two promises for every target: an input leaves the locale's character type as it
// was, and it leaves no descriptor open.
#ifndef ZVISP_FUZZ_SUPPORT_FUZZING_H_
#define ZVISP_FUZZ_SUPPORT_FUZZING_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Each target defines these two. The first runs once, before any input. Standard output and
// standard error are streams that go nowhere then: a message costs its formatting and no more.
void PrepareTarget();
void FuzzInput(const std::uint8_t* data, std::size_t size);

// Ends the process with the text of the promise when it is broken.
#define PROMISE(condition) \
  ((condition) ? static_cast<void>(0) : BrokenPromise(#condition, __FILE__, __LINE__))
[[noreturn]] void BrokenPromise(const char* promise, const char* file, int line);

// Hands out the lines of an input one after the other, so that seeds can be written by hand. The
// texts point into the input.
class InputLines {
 public:
  InputLines(const std::uint8_t* data, std::size_t size)
      : m_rest(reinterpret_cast<const char*>(data), size) {}

  bool AtEnd() const { return m_rest.empty(); }
  // The next line without its newline; empty at the end of the input.
  std::string_view Next();
  // Everything that no line has taken yet.
  std::string_view Rest();

 private:
  std::string_view m_rest;
};

// One wide unit for each byte.
std::wstring Widen(std::string_view bytes);

// Whether every byte is printable ASCII or one of the others given.
bool IsPlain(std::string_view text, std::string_view others = "");

// A directory of the process's own, gone when it ends in order. With a "/" at the end.
const std::string& FuzzDirectory();

void WriteFile(const std::string& path, std::string_view content);
std::string ReadFile(const std::string& path);

#endif  // ZVISP_FUZZ_SUPPORT_FUZZING_H_
