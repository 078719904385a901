// SPDX-License-Identifier: MIT
#include <algorithm>

#include "line/plugin_check/checks.h"

namespace line {

namespace {

using enum PluginKind;
using enum Needs;
using namespace checks;

// IspFlash needs a device in all checks: a plug-in that passes over what is wrong with the record
// programs. DumpFlash is called with an empty map and the action of a dump, so that even a plug-in
// with one function for all calls only reads.
// clang-format off
const std::vector<CheckRow> kChecks = {
  // id                 kind   needs     run               title
  {"loads",             kAny,  kNothing, Loads,            "is a library that loads"},
  {"isp-exports",       kIsp,  kLoading, IspExports,       "exports every required call"},
  {"sign-exports",      kSign, kLoading, SignExports,      "exports both required calls"},
  {"optional-exports",  kIsp,  kLoading, OptionalExports,  "exports calls that are optional"},
  {"silent-load",       kAny,  kLoading, SilentLoad,       "prints nothing when it is loaded"},
  {"load-surroundings", kAny,  kLoading, LoadSurroundings, "leaves the process alone when loaded"},
  {"empty-dump",        kIsp,  kExports, EmptyDump,        "refuses a dump of 0 bytes"},
  {"unknown-action",    kIsp,  kDevice,  UnknownAction,    "refuses actions of other calls"},
  {"empty-map",         kIsp,  kDevice,  EmptyMap,         "refuses a map without banks"},
  {"full-map",          kIsp,  kDevice,  FullMap,          "refuses 256 banks of a missing file"},
  {"too-many-entries",  kIsp,  kDevice,  TooManyEntries,   "refuses more than 256 banks"},
  {"target-order",      kIsp,  kDevice,  TargetOrder,      "refuses targets that do not ascend"},
  {"endless-path",      kIsp,  kDevice,  EndlessPath,      "refuses a path without its zero"},
  {"missing-file",      kIsp,  kDevice,  MissingFile,      "refuses a missing file"},
  {"short-file",        kIsp,  kDevice,  ShortFile,        "refuses a bank after the file's end"},
  {"callbacks-null",    kIsp,  kReturns, NullCallbacks,    "works without callbacks"},
  {"callbacks-set",     kIsp,  kReturns, SetCallbacks,     "calls the callbacks by their rules"},
  {"record-kept",       kIsp,  kReturns, RecordKept,       "leaves the record as it was"},
  {"record-bounds",     kIsp,  kReturns, RecordBounds,     "stays inside the record"},
  {"call-surroundings", kIsp,  kReturns, CallSurroundings, "leaves the process alone when called"},
  {"sign-zeros",        kSign, kExports, SignZeros,        "refuses a request that is all zero"},
  {"sign-missing-file", kSign, kExports, SignMissingFile,  "refuses a missing firmware file"},
  {"sign-endless-path", kSign, kExports, SignEndlessPath,  "refuses paths without their zeros"},
  {"sign-record",       kSign, kReturns, SignRecord,       "keeps the request, stays inside it"},
  {"sign-surroundings", kSign, kReturns, SignSurroundings, "leaves the process alone when called"},
  {"unloads",           kAny,  kLoading, Unloads,          "unloads in silence"},
};
// clang-format on

}  // namespace

const std::vector<CheckRow>& AllChecks() {
  return kChecks;
}

const CheckRow* FindCheck(const std::string& id) {
  const auto row = std::find_if(kChecks.begin(), kChecks.end(),
                                [&id](const CheckRow& one) { return one.id == id; });
  return row == kChecks.end() ? nullptr : &*row;
}

}  // namespace line
