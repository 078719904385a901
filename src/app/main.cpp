// SPDX-License-Identifier: MIT
//
// One run of the tool: parse, banner, records, execute, report, free.
#include <csignal>
#include <cstdio>

#include "app/banner.h"
#include "app/execute_process.h"
#include "app/standard_streams.h"
#include "cmdline/isp_args_parse.h"
#include "plugin/comm_plugin.h"
#include "plugin/fresh_setting.h"
#include "plugin/zeroed.h"

using namespace zvisp;

namespace {

std::uint32_t ExecuteWithHeapRecords(const CCpIspArgsParse& parser) {
  const auto setting = MakeFreshCopy(parser.GetISPCmdSetting());
  const auto sign_args = MakeZeroed<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS>();
  if (setting == nullptr || sign_args == nullptr) {
    ShowResult(CP_ISPTOOL_ACTION_UNDEFINED, kRecordNotAllocated);
    return kRecordNotAllocated;
  }
  CopyBytes(*sign_args, parser.GetDigitalSignArgs());
  g_pstISPSetting = setting.get();
  g_pstDigitalSignArgs = sign_args.get();
  CCpZvString isp_plugin(L"PlugIn/libIsp.dylib");
  CCpZvString sign_plugin(L"libSignVerify.dylib");
  const std::uint32_t result =
      ExecuteProcess(g_pstISPSetting, g_pstDigitalSignArgs, isp_plugin, sign_plugin, nullptr);
  // Asked of the record, because a plug-in may have changed it.
  ShowResult(g_pstISPSetting->enumActionType, result);
  g_pstISPSetting = nullptr;
  g_pstDigitalSignArgs = nullptr;
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  // Whoever reads our output may leave at any time; that must not end a run half way through.
  std::signal(SIGPIPE, SIG_IGN);
  PrepareStandardStreams();
  // The communication object of the process: this tool loads no library into it.
  const CZvComm comm;
  CCpIspArgsParse parser;
  if (parser.ParseArgs(argc, argv) == 0) {
    std::printf("argument is illegal.\n");
    return 0;
  }
  ShowToolVersion();
  return static_cast<int>(ExecuteWithHeapRecords(parser));
}
