// SPDX-License-Identifier: MIT
//
// What the fuzz targets share: the way from an input to texts, a directory to put files in, and
// checks that end the process, which is how a fuzzer learns of a broken promise.
#ifndef ZVISP_FUZZ_SUPPORT_FUZZING_H_
#define ZVISP_FUZZ_SUPPORT_FUZZING_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The entry points that libFuzzer calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

// Ends the process with the text of the promise when it is broken.
#define PROMISE(condition) \
  ((condition) ? static_cast<void>(0) : BrokenPromise(#condition, __FILE__, __LINE__))
[[noreturn]] void BrokenPromise(const char* promise, const char* file, int line);

// Hands out the lines of an input one after the other, so that seeds can be written by hand.
class InputLines {
 public:
  InputLines(const std::uint8_t* data, std::size_t size);

  // The next line without its line end; empty at the end of the input.
  std::string Next();
  // Everything that no line has taken yet.
  std::string Rest();
  // All lines that are left, each up to its first zero, as the system would hand them to a program.
  std::vector<std::string> AllWords();

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
