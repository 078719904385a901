// SPDX-License-Identifier: MIT
#include "line/command/hello.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>

#include "app/banner.h"
#include "line/command/paths.h"
#include "line/job/sha256.h"

namespace line {

namespace {

std::string HostName() {
  char name[256] = {};
  return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

// The name of the login. The account data base is not asked: on some hosts that needs the network.
std::string OperatorName() {
  for (const char* const variable : {"LOGNAME", "USER"}) {
    const char* const name = std::getenv(variable);
    if (name != nullptr && *name != '\0') return name;
  }
  // A service often has neither variable.
  return "uid " + std::to_string(getuid());
}

}  // namespace

std::string ToolVersion() {
  return std::to_string(g_ucszVersion[0]) + "." + std::to_string(g_ucszVersion[1]) + "." +
         std::to_string(g_ucszVersion[2]);
}

HelloEvent MakeHello(const std::string& plugin_directory) {
  HelloEvent hello;
  hello.tool_version = ToolVersion();
  hello.host = HostName();
  hello.operator_name = OperatorName();
  hello.pid = getpid();
  const std::string path = IspPluginIn(plugin_directory);
  if (const std::optional<std::string> hash = Sha256OfFile(path)) {
    hello.plugin = FileFacts{path, *hash};
  }
  return hello;
}

}  // namespace line
