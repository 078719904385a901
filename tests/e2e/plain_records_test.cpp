// SPDX-License-Identifier: MIT
//
// A plug-in in C++ may declare the records: through zvisp_plugin.h they are plain structs.
#include "support/end_to_end.h"

namespace {

class PlainRecords : public EndToEnd {
 protected:
  PlainRecords() { m_tool.WithIspPlugin(TestPlugin("plain_records")); }
};

TEST_F(PlainRecords, APluginThatDeclaresEveryRecordLoadsAndReadsTheRun) {
  // Two banks, interface 3, a user flag of two bytes, and a name of 6 bytes.
  GivenFile(m_tool / "\xC3\xA9.bin", std::string(65537, 'x'));
  const std::size_t path_bytes = m_tool.WorkDir().size() + 1 + 6;
  char code[16];
  std::snprintf(code, sizeof code, "0x%zX", 0x23200 + path_bytes);
  ExpectRun({"--ispuser", "--fw", "\xC3\xA9.bin", "--comm", "3", "--flagaddr", "0x100",
             "--flagdata", "1,2"},
            kBanner + FailLine(code), static_cast<int>(path_bytes));
}

}  // namespace
