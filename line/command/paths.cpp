// SPDX-License-Identifier: MIT
#include "line/command/paths.h"

#include <filesystem>
#include <system_error>

#include "base/process_path.h"

namespace line {

std::string AbsolutePath(const std::string& path) {
  std::error_code failure;
  const std::filesystem::path absolute = std::filesystem::absolute(path, failure);
  return failure ? path : absolute.string();
}

std::string PluginDirectory(const std::string& given) {
  if (!given.empty()) return AbsolutePath(given) + "/";
  char program[4096] = {};
  zvisp::ReadProcessPath(program, sizeof program);
  return std::filesystem::path(program).parent_path().string() + "/";
}

std::string IspPluginIn(const std::string& plugin_directory) {
  return plugin_directory + "PlugIn/libIsp.dylib";
}

}  // namespace line
