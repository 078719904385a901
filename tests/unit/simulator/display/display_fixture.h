// SPDX-License-Identifier: MIT
//
// A simulated display with files of its own, and the words in which tests talk to it.
#ifndef ZVISP_TESTS_UNIT_SIMULATOR_DISPLAY_DISPLAY_FIXTURE_H_
#define ZVISP_TESTS_UNIT_SIMULATOR_DISPLAY_DISPLAY_FIXTURE_H_

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <string>

#include "display/commands.h"
#include "display/host.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

class DisplayTest : public testing::Test {
 protected:
  DisplayTest() : m_setting(std::make_unique<simulator::Setting>()) {
    setenv("ZVISP_SIM_DIR", m_scratch.Path().c_str(), 1);
    m_setting->enumActionType = 4;
    m_setting->enumCommID = 1;
    m_setting->bAutoSlaveAddr = 1;
  }

  static void CopyText(wchar_t (&field)[260], const std::string& ascii) {
    std::swprintf(field, 260, L"%s", ascii.c_str());
  }

  // Appends an entry to the record's firmware map.
  void GivenEntry(std::uint32_t target, std::uint32_t file_bank, const std::string& path) {
    STRUCT_C_STYLE_MAP_FW& map = m_setting->stMapFw;
    map.ulTargetBank[map.ulCount] = target;
    map.stBank[map.ulCount].ulFileBank = file_bank;
    CopyText(map.stBank[map.ulCount].wszPath, path);
    ++map.ulCount;
  }
  // Maps a whole firmware file of so many bytes from a start bank on; returns its content.
  std::string GivenFirmwareAt(std::uint32_t start, std::size_t bytes, unsigned seed = 1) {
    const std::string path = GivenFirmware(m_scratch / ("fw" + std::to_string(seed)), bytes, seed);
    for (std::uint32_t i = 0; i * 65536 < bytes; ++i)
      GivenEntry(start + i, i, path);
    return ReadWholeFile(path);
  }
  void GivenFaults(const std::string& text) { GivenFile(FileOf("faults"), text); }

  std::string FileOf(const std::string& kind) const { return m_scratch / ("display-01." + kind); }
  std::string Content(const std::string& kind) const { return ReadWholeFile(FileOf(kind)); }
  std::string Flash() const { return Content("flash"); }
  // One line of the counters: "bank erases writes" without the padding.
  std::string Counts(std::uint32_t bank) const {
    unsigned number = 0, erases = 0, writes = 0;
    const std::string line = Content("counters").substr(bank * 26, 26);
    std::sscanf(line.c_str(), "%u %u %u", &number, &erases, &writes);
    return std::to_string(number) + " " + std::to_string(erases) + " " + std::to_string(writes);
  }

  ScratchDir m_scratch;
  std::unique_ptr<simulator::Setting> m_setting;
  simulator::Host m_host;
};

#endif  // ZVISP_TESTS_UNIT_SIMULATOR_DISPLAY_DISPLAY_FIXTURE_H_
