// SPDX-License-Identifier: MIT
//
// An ISP plug-in that is loaded as zvisp loads it, and records to call it with.
#ifndef ZVISP_LINE_PLUGIN_CHECK_ISP_CALLS_H_
#define ZVISP_LINE_PLUGIN_CHECK_ISP_CALLS_H_

#include <functional>
#include <string>

#include "line/plugin_check/check.h"
#include "line/plugin_check/guarded_bytes.h"
#include "plugin/isp_plugin.h"

namespace line {

// A record in guarded memory: what zvisp hands over for --isp without an interface, and an empty
// map.
class IspRecord {
 public:
  using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

  explicit IspRecord(Guard guard = Guard::kNone);

  Setting* operator->() const { return Get(); }
  Setting* Get() const;
  bool IsPatternWhole() const { return m_bytes.IsPatternWhole(); }

  // Adds a bank of a file to the map.
  void AddBank(std::uint32_t target, std::uint32_t file_bank, const std::string& path) const;

 private:
  GuardedBytes m_bytes;
};

// Loads the plug-in and sets callbacks, as zvisp-line does: no hub device. False when zvisp would
// refuse it.
bool LoadIsp(const CheckContext& context, CCpIsp& isp);

// A call, and what it was made with.
struct MadeCall {
  const char* name;  // such as "DumpFlash of 0 bytes"
  int code;
  IspRecord::Setting before;  // the record
  const IspRecord& record;
  const GuardedBytes& key;  // only of GetKeyFromFlash
};

// Makes the calls by which the rules of all calls are checked: a dump of 0 bytes; with a device
// also a real dump, an IspFlash of a missing file, and GetKeyFromFlash. `after` gets each of them.
void MakeCalls(const CheckContext& context, CCpIsp& isp, Guard guard,
               const std::function<void(const MadeCall& call)>& after);

// For a call that has to be refused: what is wrong with its code, and what to do; empty for a
// refusal that zvisp's exit status shows.
std::string WhyNoRefusal(const std::string& call, int code);

}  // namespace line

#endif  // ZVISP_LINE_PLUGIN_CHECK_ISP_CALLS_H_
