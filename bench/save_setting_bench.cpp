// SPDX-License-Identifier: MIT
//
// SaveSetting by the number of bank entries, which is one write of the file with 1 + 3 n keys.
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "plugin/command_setting.h"
#include "plugin/zeroed.h"
#include "settings/isp_setting.h"

#include <benchmark/benchmark.h>

using namespace zvisp;

namespace {

void SaveSetting(benchmark::State& state) {
  char path[] = "/tmp/zvisp-bench-XXXXXX";
  if (mkstemp(path) < 0) return state.SkipWithError("no temporary file");
  const auto record = MakeZeroed<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
  FillSettingFilePath(path, record->wszSettingFilePath);
  record->stMapFw.ulCount = static_cast<std::uint32_t>(state.range(0));
  for (std::uint32_t i = 0; i < record->stMapFw.ulCount; ++i) {
    record->stMapFw.ulTargetBank[i] = i;
    std::wcscpy(record->stMapFw.stBank[i].wszPath, L"/firmware/ACME_M27_1.2.3.bin");
  }
  for (auto _ : state) {
    state.PauseTiming();
    std::remove(path);
    state.ResumeTiming();
    record->SaveSetting();
  }
  std::remove(path);
}
BENCHMARK(SaveSetting)->Arg(1)->Arg(16)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond);

}  // namespace
