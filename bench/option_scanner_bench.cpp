// SPDX-License-Identifier: MIT
//
// The option scanner next to the C library's getopt_long: the tool's own option table, and a
// command line as an operator types it. Both sides register their options and scan to the end each
// time.
#include "cmdline/option_scanner.h"

#include <getopt.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <iterator>

#include <benchmark/benchmark.h>

namespace {

struct Row {
  const char* name;
  int has_arg;
};

// clang-format off
constexpr Row kRows[] = {
    {"verify", 0},        {"sign", 0},           {"erase", 0},         {"isp", 0},
    {"ispuser", 0},       {"ispdiff", 0},        {"ispcopy", 0},       {"factoryisp", 0},
    {"recordver", 0},     {"srstatus", 0},       {"flashtype", 0},     {"readsr", 0},
    {"writesr", 0},       {"readsafeguard", 0},  {"writesafeguard", 0}, {"resetmcu", 0},
    {"dumpflash", 0},     {"getstatus", 0},      {"userdefinedinfo", 0}, {"edpisp", 0},
    {"enterispmode", 0},  {"mergefwinfo", 0},    {"senduserdefinedinfo", 0}, {"i2cwrite", 0},
    {"getscalertype", 0}, {"boot", 1},           {"newboot", 0},       {"ispchannel", 0},
    {"factory", 0},       {"sw", 0},             {"hw", 0},            {"dsmode", 1},
    {"reg", 0},           {"ddcci", 0},          {"flash", 0},         {"fwbin", 0},
    {"cmd", 0},           {"fwbincmd", 0},       {"copydiffer", 0},    {"userdefined", 1},
    {"veraddr", 1},       {"totalverlen", 1},    {"majorverlen", 1},   {"subverlen", 1},
    {"recordvermode", 1}, {"dumpaddr", 1},       {"dumplen", 1},       {"dumpname", 1},
    {"comm", 1},          {"fw", 1},             {"signfile", 1},      {"keypair", 1},
    {"vkfile", 1},        {"skfile", 1},         {"subcert", 1},       {"nextvkfile", 1},
    {"bank", 1},          {"settingfile", 1},    {"fw1", 1},           {"bank1", 1},
    {"fw2", 1},           {"bank2", 1},          {"fw3", 1},           {"bank3", 1},
    {"fw4", 1},           {"bank4", 1},          {"fw5", 1},           {"bank5", 1},
    {"fw6", 1},           {"bank6", 1},          {"fw7", 1},           {"bank7", 1},
    {"fw8", 1},           {"bank8", 1},          {"fw9", 1},           {"bank9", 1},
    {"comparever", 0},    {"flagaddr", 1},       {"flagdata", 1},      {"slave", 1},
    {"searchfw", 1},      {"edpmode", 1},        {"read", 0},          {"write", 1},
    {"writedata", 1},     {"ddccicmd", 0},
};

constexpr const char* kCommandLine[] = {
    "zvisp",       "--isp",        "--fw1",  "a.bin",         "--bank1", "0",
    "--fw2",       "b.bin",        "--bank2", "16",           "--comm",  "3",
    "--slave",     "0x94",         "--comparever", "--ispchannel",
    "--settingfile", "x.ini",      "--newboot",      "--reg",
};
// clang-format on
constexpr int kOptionsOnCommandLine = 12;
constexpr int kWords = static_cast<int>(std::size(kCommandLine));

// Only the pointers are ever moved; a scanner takes them as main's, which are writable.
std::array<char*, std::size(kCommandLine) + 1> Vector() {
  std::array<char*, std::size(kCommandLine) + 1> words = {};
  std::transform(std::begin(kCommandLine), std::end(kCommandLine), words.begin(),
                 [](const char* word) { return const_cast<char*>(word); });
  return words;
}

template <typename Unit>
std::array<Unit, std::size(kRows) + 1> Table() {
  std::array<Unit, std::size(kRows) + 1> table = {};
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    table[i] = {kRows[i].name, kRows[i].has_arg, nullptr, 1000 + static_cast<int>(i)};
  }
  return table;
}

// A run that scanned anything else would measure something else.
void RequireWholeCommandLine(int options) {
  if (options != kOptionsOnCommandLine) std::abort();
}

void OptionScannerOnATypicalCommandLine(benchmark::State& state) {
  const auto table = Table<STRUCT_CP_LONG_CMD_UNIT>();
  for (auto _ : state) {
    auto words = Vector();
    CpZvCmdLindParse scanner;
    scanner.AddLongCmds(table.data());
    int options = 0;
    while (scanner.ParseCmdLineEx(kWords, words.data(), nullptr) >= 1000) {
      benchmark::DoNotOptimize(scanner.GetCmdArg());
      ++options;
    }
    RequireWholeCommandLine(options);
  }
}
BENCHMARK(OptionScannerOnATypicalCommandLine);

void RestartGetopt() {
#ifdef __GLIBC__
  optind = 0;
#else
  optind = 1;
  optreset = 1;
#endif
}

void GetoptLongOnATypicalCommandLine(benchmark::State& state) {
  const auto table = Table<option>();
  for (auto _ : state) {
    auto words = Vector();
    RestartGetopt();
    int options = 0;
    while (getopt_long(kWords, words.data(), "", table.data(), nullptr) >= 1000) {
      benchmark::DoNotOptimize(optarg);
      ++options;
    }
    RequireWholeCommandLine(options);
  }
}
BENCHMARK(GetoptLongOnATypicalCommandLine);

}  // namespace
