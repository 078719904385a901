// SPDX-License-Identifier: MIT
#include "line/worker/plugin_load.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "app/execute_process.h"
#include "base/transform.h"
#include "plugin/dynamic_library.h"
#include "plugin/isp_plugin.h"
#include "plugin/sign_verify_plugin.h"

using namespace zvisp;

namespace line {

namespace {

struct CallOfAction {
  std::uint32_t action;
  const char* symbol;
};

// The actions whose call a plug-in may lack.
// clang-format off
constexpr CallOfAction kOptionalCalls[] = {
  // action                              symbol
  {CP_ISPTOOL_ACTION_RESET_MCU,          "ResetMCUExport"},
  {CP_ISPTOOL_ACTION_USER_DEFINED_INFO,  "GetUserDefinedInfoFromDDCCI"},
  {CP_ISPTOOL_ACTION_EDP_ISP,            "IspEeprom"},
  {CP_ISPTOOL_ACTION_ENTER_ISP_MODE,     "EnterISPModeExport"},
  {CP_ISPTOOL_ACTION_GET_SCALER_TYPE,    "GetScalerType"},
};
// clang-format on

std::optional<LoadProblem> FindLoadProblem(const std::string& path,
                                           const std::vector<ExportName>& names) {
  if (std::optional<LoadProblem> problem = LookAtLibraryFile(path)) return problem;
  OpenedLibrary library = OpenLibrary(CCpTransform().ConvertUTF8StringToUnicode(path).c_str());
  if (library.handle == nullptr) return ExplainLoaderReason(library.path, library.reason);
  const ExportsFound required = FindExports(library.handle, names, ExportNeed::kRequired);
  CloseLibrary(library.handle);
  if (required.absent.empty()) return std::nullopt;
  return ExplainMissing(required.absent);
}

std::string Explain(const char* plugin, const std::string& path,
                    const std::vector<ExportName>& names) {
  // zvisp loads nothing then, and has said so.
  if (getuid() != geteuid()) return "";
  const std::optional<LoadProblem> problem = FindLoadProblem(path, names);
  if (!problem) return "";
  return std::string("the ") + plugin + " plug-in could not be loaded: " + path + " " +
         problem->what + "; " + problem->advice;
}

std::string ExplainMissingCall(std::uint32_t action) {
  const auto* const row =
      std::find_if(std::begin(kOptionalCalls), std::end(kOptionalCalls),
                   [action](const CallOfAction& one) { return one.action == action; });
  if (row == std::end(kOptionalCalls)) return "";
  return std::string("the ISP plug-in does not export ") + row->symbol +
         ", the call of this action; use a plug-in that has it";
}

}  // namespace

ExportsFound FindExports(void* library, const std::vector<ExportName>& names, ExportNeed need) {
  ExportsFound found;
  for (const ExportName& name : names) {
    if (name.need != need) continue;
    const bool has_it = dlsym(library, name.symbol) != nullptr;
    (has_it ? found.present : found.absent).emplace_back(name.symbol);
  }
  return found;
}

LoadProblem ExplainLoaderReason(const std::string& path, const std::string& reason) {
  // glibc names the library that it cannot find in front of a colon.
  const std::string library = reason.substr(0, reason.find(": "));
  if (library != path && reason.find("cannot open shared object file") != std::string::npos) {
    return {"needs the library " + library + ", which is not found",
            "install that library, or link it statically"};
  }
  std::string text = reason;
  if (text.compare(0, path.size() + 2, path + ": ") == 0) text.erase(0, path.size() + 2);
  const bool is_symbol = text.find("undefined symbol") != std::string::npos;
  return {"is refused by the loader: " + text,
          is_symbol ? "link the library that has this symbol" : "mend what the loader names"};
}

LoadProblem ExplainMissing(const std::vector<std::string>& absent) {
  return {"does not export " + Listed(absent),
          "define each in a source that includes plugin/zvisp_plugin.h, which exports it with C "
          "linkage"};
}

std::string ExplainNotLoaded(std::uint32_t code, std::uint32_t action,
                             const std::string& plugin_directory) {
  switch (code) {
    case kIspPluginNotLoaded:
      return Explain("ISP", plugin_directory + "PlugIn/libIsp.dylib", CCpIsp::ExportNames());
    case kSignPluginNotLoaded:
      return Explain("signature", plugin_directory + "libSignVerify.dylib",
                     CCpSignVerify::ExportNames());
    case kExportNotBound:
      return ExplainMissingCall(action);
    default:
      return "";
  }
}

}  // namespace line
