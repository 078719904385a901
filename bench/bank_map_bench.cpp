// SPDX-License-Identifier: MIT
//
// The bank map of ten firmware files next to what no counting can do without: opening each file and
// asking for its size. Ten files of 25 banks make a map of 250; ten sparse files of 2 GiB are only
// counted, because a map of so many banks is refused.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "firmware/firmware_slots.h"
#include "plugin/command_setting.h"
#include "plugin/zeroed.h"

#include <benchmark/benchmark.h>

using namespace zvisp;

namespace {

constexpr unsigned int kFiles = 10;
constexpr off_t kBankBytes = 65536;
constexpr off_t kBanksOfAFile = 25;
constexpr off_t kHugeBytes = off_t{2} << 30;
constexpr unsigned int kHugeBanks = 32768;

// Ten sparse files that are gone with their owner.
class FirmwareFiles {
 public:
  explicit FirmwareFiles(off_t bytes) {
    if (mkdtemp(m_directory) == nullptr) std::abort();
    for (unsigned int i = 0; i < kFiles; ++i) {
      const int file = open(Path(i).c_str(), O_CREAT | O_WRONLY, 0600);
      if (file < 0 || ftruncate(file, bytes) != 0) std::abort();
      close(file);
    }
  }
  ~FirmwareFiles() {
    for (unsigned int i = 0; i < kFiles; ++i)
      unlink(Path(i).c_str());
    rmdir(m_directory);
  }
  FirmwareFiles(const FirmwareFiles&) = delete;
  FirmwareFiles& operator=(const FirmwareFiles&) = delete;

  std::string Path(unsigned int i) const {
    return std::string(m_directory) + "/" + std::to_string(i);
  }

 private:
  char m_directory[24] = "/tmp/zvisp-bench-XXXXXX";
};

void BankMapOfTenFiles(benchmark::State& state) {
  const FirmwareFiles files(kBanksOfAFile * kBankBytes);
  const auto setting = MakeZeroed<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
  setting->enumActionType = CP_ISPTOOL_ACTION_ISP;
  FwBankMap slots;
  for (unsigned int i = 0; i < kFiles; ++i) {
    const std::string path = files.Path(i);
    InsertCommandFwFile(slots, i, std::wstring(path.begin(), path.end()));
    InsertCommandStartBank(slots, i, std::to_string(i * kBanksOfAFile));
  }
  for (auto _ : state) {
    FwBankMap map;
    if (JudgeFwMap(slots, "", *setting, map) != 1 || map.size() != 250) std::abort();
  }
}
BENCHMARK(BankMapOfTenFiles);

void CountBanks(benchmark::State& state, off_t bytes, unsigned int expected) {
  const FirmwareFiles files(bytes);
  for (auto _ : state) {
    for (unsigned int i = 0; i < kFiles; ++i) {
      std::string path = files.Path(i);
      unsigned int banks = 0;
      if (GetFwBankCount("", path, banks) != 1 || banks != expected) std::abort();
    }
  }
}
BENCHMARK_CAPTURE(CountBanks, 25_banks, kBanksOfAFile* kBankBytes, unsigned{kBanksOfAFile});
BENCHMARK_CAPTURE(CountBanks, 2_GiB, kHugeBytes, kHugeBanks);

void OpenAndAskForSize(benchmark::State& state, off_t bytes) {
  const FirmwareFiles files(bytes);
  for (auto _ : state) {
    for (unsigned int i = 0; i < kFiles; ++i) {
      struct stat status;
      const int file = open(files.Path(i).c_str(), O_RDONLY | O_CLOEXEC);
      if (fstat(file, &status) != 0 || status.st_size != bytes) std::abort();
      close(file);
    }
  }
}
BENCHMARK_CAPTURE(OpenAndAskForSize, 25_banks, kBanksOfAFile* kBankBytes);
BENCHMARK_CAPTURE(OpenAndAskForSize, 2_GiB, kHugeBytes);

}  // namespace
