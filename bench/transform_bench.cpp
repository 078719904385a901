// SPDX-License-Identifier: MIT
//
// UTF-8 to wide text and back next to iconv itself, opened and closed for each text as the tool
// does: a path that is plain ASCII, and one that is not.
#include "base/transform.h"

#include <iconv.h>

#include <cstdlib>
#include <string>

#include <benchmark/benchmark.h>

namespace {

constexpr char kAscii[] = "/srv/firmware/panels/ACME_M27_1.2.3_release.bin";
constexpr char kEuropean[] =
    "/srv/firmware/\xC3\xA9"
    "crans/ACME_M27_\xC3\xBC"
    "ber_1.2.3.bin";

const char* TextOf(const benchmark::State& state) {
  return state.range(0) == 0 ? kAscii : kEuropean;
}

void Utf8ToWide(benchmark::State& state) {
  const CCpTransform transform;
  const std::string text = TextOf(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(transform.ConvertUTF8StringToUnicode(text));
  }
}
BENCHMARK(Utf8ToWide)->ArgName("european")->Arg(0)->Arg(1);

void WideToUtf8(benchmark::State& state) {
  const CCpTransform transform;
  const std::wstring text = transform.ConvertUTF8StringToUnicode(TextOf(state));
  for (auto _ : state) {
    benchmark::DoNotOptimize(transform.ConvertUnicodeStringToUTF8(text));
  }
}
BENCHMARK(WideToUtf8)->ArgName("european")->Arg(0)->Arg(1);

void PlainIconv(const char* to_code, const char* from_code, std::string text) {
  char buffer[1024];
  const iconv_t converter = iconv_open(to_code, from_code);
  char* from = text.data();
  std::size_t from_bytes = text.size();
  char* to = buffer;
  std::size_t room = sizeof buffer;
  if (iconv(converter, &from, &from_bytes, &to, &room) != 0) std::abort();
  iconv_close(converter);
  benchmark::DoNotOptimize(buffer);
}

void IconvUtf8ToWide(benchmark::State& state) {
  const std::string text = TextOf(state);
  for (auto _ : state) {
    PlainIconv("UTF-32LE", "UTF-8", text);
  }
}
BENCHMARK(IconvUtf8ToWide)->ArgName("european")->Arg(0)->Arg(1);

void IconvWideToUtf8(benchmark::State& state) {
  const std::wstring text = CCpTransform().ConvertUTF8StringToUnicode(TextOf(state));
  const std::string bytes(reinterpret_cast<const char*>(text.data()), text.size() * sizeof text[0]);
  for (auto _ : state) {
    PlainIconv("UTF-8", "UTF-32LE", bytes);
  }
}
BENCHMARK(IconvWideToUtf8)->ArgName("european")->Arg(0)->Arg(1);

}  // namespace
