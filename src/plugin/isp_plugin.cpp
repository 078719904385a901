// SPDX-License-Identifier: MIT
#include "plugin/isp_plugin.h"

#include <cstdio>

#include "plugin/dynamic_library.h"

using namespace zvisp;

using enum ExportNeed;

// In the order of the look-up: the first required symbol that is missing ends it.
struct CCpIsp::Table {
  // clang-format off
  static constexpr ExportRow<CCpIsp> kRows[] = {
    // symbol                        need            member
    {"IspFlash",                    kRequired,      Slot<&CCpIsp::IspFlash>},
    {"SetCommInterface",            kRequired,      Slot<&CCpIsp::SetCommInterface>},
    {"RecordFWVersion",             kRequired,      Slot<&CCpIsp::RecordFWVersion>},
    {"GetKeyFromFlash",             kRequired,      Slot<&CCpIsp::GetKeyFromFlash>},
    {"SetUIFunction",               kRequired,      Slot<&CCpIsp::SetUIFunction>},
    {"DumpFlash",                   kRequired,      Slot<&CCpIsp::DumpFlash>},
    {"GetUserDefinedInfoFromDDCCI", kOptional,      Slot<&CCpIsp::GetUserDefinedInfoFromDDCCI>},
    {"IspEeprom",                   kOptional,      Slot<&CCpIsp::IspEeprom>},
    {"EnterISPModeExport",          kOptional,      Slot<&CCpIsp::EnterISPModeExport>},
    {"ResetMCUExport",              kOptional,      Slot<&CCpIsp::ResetMCUExport>},
    {"GetScalerType",               kOptional,      Slot<&CCpIsp::GetScalerType>},
    {"SetIDev",                     kNeverLookedUp, Slot<&CCpIsp::m_set_idev>},
    {"GetFWInfo",                   kNeverLookedUp, Slot<&CCpIsp::GetFWInfo>},
    {"SendUserDefinedInfo",         kNeverLookedUp, Slot<&CCpIsp::SendUserDefinedInfo>},
    {"ChipEraseFlash",              kNeverLookedUp, Slot<&CCpIsp::ChipEraseFlash>},
    {"GetMergeFwInfo",              kNeverLookedUp, Slot<&CCpIsp::GetMergeFwInfo>},
    {"SetMergeFwInfo",              kNeverLookedUp, Slot<&CCpIsp::SetMergeFwInfo>},
    {"I2CWriteExport",              kNeverLookedUp, Slot<&CCpIsp::I2CWriteExport>},
  };
  // clang-format on
};

std::vector<ExportName> CCpIsp::ExportNames() {
  return NamesOfExports(Table::kRows);
}

void CCpIsp::Init() {
  m_library = nullptr;
  UnbindExports(*this, Table::kRows);
}

bool CCpIsp::LoadIspDllFile(const wchar_t* path) {
  FreeIspDllFile();
  const OpenedLibrary opened = OpenLibrary(path);
  if (opened.handle == nullptr) {
    // Ends in a letter n instead of a line feed: scripts match this text.
    std::printf("dlopen - %sn", opened.reason.c_str());
    return false;
  }
  m_library = opened.handle;
  if (BindExports(m_library, *this, Table::kRows)) return true;
  FreeIspDllFile();
  return false;
}

void CCpIsp::FreeIspDllFile() {
  if (CloseLibrary(m_library)) Init();
}

int CCpIsp::SetIDev(void* device) {
  if (!m_set_idev.IsBound()) return 0;
  m_set_idev(device);
  return 1;
}
