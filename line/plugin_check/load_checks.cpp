// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "base/transform.h"
#include "line/event/screen_text.h"
#include "line/plugin_check/checks.h"
#include "line/plugin_check/isp_calls.h"
#include "line/plugin_check/surroundings.h"
#include "line/worker/plugin_load.h"
#include "plugin/dynamic_library.h"
#include "plugin/isp_plugin.h"
#include "plugin/sign_verify_plugin.h"

using namespace zvisp;

namespace line::checks {

namespace {

OpenedLibrary Open(const CheckContext& context) {
  context.announce("loading");
  return OpenLibrary(CCpTransform().ConvertUTF8StringToUnicode(context.file).c_str());
}

Finding Refused(const LoadProblem& problem) {
  return Failed("It " + problem.what + ": " + problem.advice + ".");
}

Finding CheckExports(const CheckContext& context, const std::vector<ExportName>& names) {
  const OpenedLibrary library = Open(context);
  const ExportsFound required = FindExports(library.handle, names, ExportNeed::kRequired);
  return required.absent.empty() ? Passed() : Refused(ExplainMissing(required.absent));
}

// What this process has printed so far. Its output is a file that its parent has made.
std::string Printed() {
  std::fflush(nullptr);
  char text[200];
  const ssize_t bytes = pread(STDOUT_FILENO, text, sizeof text, 0);
  return bytes > 0 ? std::string(text, static_cast<std::size_t>(bytes)) : "";
}

Finding FailedByPrinting(const std::string& when, const std::string& printed) {
  return Failed("It printed '" + CleanText(printed.substr(0, printed.find('\n'))) + "' " + when +
                ": print in calls only, for scripts read the last line of zvisp.");
}

bool IsStillLoaded(const std::string& path) {
  return dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD) != nullptr;
}

}  // namespace

Finding Loads(const CheckContext& context) {
  if (const auto problem = LookAtLibraryFile(context.file)) return Refused(*problem);
  const OpenedLibrary library = Open(context);
  if (library.handle != nullptr) return Passed();
  return Refused(ExplainLoaderReason(library.path, library.reason));
}

Finding IspExports(const CheckContext& context) {
  return CheckExports(context, CCpIsp::ExportNames());
}

Finding SignExports(const CheckContext& context) {
  return CheckExports(context, CCpSignVerify::ExportNames());
}

Finding OptionalExports(const CheckContext& context) {
  const OpenedLibrary library = Open(context);
  const std::vector<ExportName> names = CCpIsp::ExportNames();
  const ExportsFound optional = FindExports(library.handle, names, ExportNeed::kOptional);
  const ExportsFound unused = FindExports(library.handle, names, ExportNeed::kNeverLookedUp);
  std::string text;
  if (!optional.present.empty()) text += "Present: " + Listed(optional.present) + ". ";
  if (!optional.absent.empty()) {
    text += "Absent: " + Listed(optional.absent) + "; the actions of these end with code 6. ";
  }
  if (!unused.present.empty()) text += "Never called: " + Listed(unused.present) + ". ";
  return Passed(text.substr(0, text.size() - 1));
}

Finding SilentLoad(const CheckContext& context) {
  Open(context);
  const std::string printed = Printed();
  return printed.empty() ? Passed() : FailedByPrinting("while it was loaded", printed);
}

Finding LoadSurroundings(const CheckContext& context) {
  const Surroundings before;
  const OpenedLibrary library = Open(context);
  const std::vector<std::string> differences = before.Differences();
  if (differences.empty()) return Passed();
  return Failed("After loading, " + Listed(differences) +
                ": leave the process alone until a call, and then as it was.");
}

Finding Unloads(const CheckContext& context) {
  OpenedLibrary library = Open(context);
  const std::string before = Printed();
  context.announce("unloading");
  CloseLibrary(library.handle);
  const std::string printed = Printed().substr(before.size());
  if (!printed.empty()) return FailedByPrinting("while it was unloaded", printed);
  if (!IsStillLoaded(library.path)) return Passed();
  return Warned(
      "It stays loaded after dlclose, so a second load finds the data of the first: in C++ build "
      "it with -fno-gnu-unique, link without -z nodelete, and end threads of your own.");
}

}  // namespace line::checks
