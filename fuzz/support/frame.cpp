// SPDX-License-Identifier: MIT
//
// The entry points that libFuzzer calls: the frame around every input of a target.
#include <fcntl.h>
#include <iconv.h>
#include <locale.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "support/fuzzing.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

ssize_t WriteNowhere(void* /*cookie*/, const char* /*bytes*/, std::size_t count) {
  return static_cast<ssize_t>(count);
}

// libFuzzer keeps the stream that standard error was before.
std::FILE* NowhereStream() {
  cookie_io_functions_t nowhere = {};
  nowhere.write = WriteNowhere;
  return fopencookie(nullptr, "w", nowhere);
}

// Converters are loaded from disk when the first use begins and dropped when the last one ends.
void KeepConverters() {
  static iconv_t converters[2];
  converters[0] = iconv_open("UTF-32LE", "UTF-8");
  converters[1] = iconv_open("UTF-8", "UTF-32LE");
}

// Records are larger than what malloc takes from its heap, and new pages for each would cost more
// than the run over them.
void KeepMemory() {
  constexpr int kMostBytes = 32 * 1024 * 1024;
  mallopt(M_MMAP_THRESHOLD, kMostBytes);
  mallopt(M_TRIM_THRESHOLD, kMostBytes);
  mallopt(M_TOP_PAD, kMostBytes);
}

// A descriptor that is left open takes the lowest free number.
int LowestFreeDescriptor() {
  static const int any = open("/dev/null", O_RDWR | O_CLOEXEC);
  const int lowest = fcntl(any, F_DUPFD_CLOEXEC, 0);
  PROMISE(lowest >= 0);
  close(lowest);
  return lowest;
}

}  // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  stdout = NowhereStream();
  stderr = NowhereStream();
  PROMISE(stdout != nullptr && stderr != nullptr);
  KeepConverters();
  KeepMemory();
  PrepareTarget();
  return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string character_type_before = setlocale(LC_CTYPE, nullptr);
  const int descriptor_before = LowestFreeDescriptor();
  FuzzInput(data, size);
  PROMISE(character_type_before == setlocale(LC_CTYPE, nullptr));
  PROMISE(descriptor_before == LowestFreeDescriptor());
  return 0;
}
