// SPDX-License-Identifier: MIT
//
// What the header says to authors of plug-ins about the process that calls them.
#include <sys/stat.h>

#include "support/end_to_end.h"

namespace {

class Surroundings : public EndToEnd {
 protected:
  Surroundings() { m_tool.WithIspPlugin(TestPlugin("surroundings")); }
};

TEST_F(Surroundings, ACallFindsTheLocaleTheUmaskAndTheDirectoryThatTheHeaderPromises) {
  GivenFile(m_tool / "\xC3\xA9.bin", "firmware");
  umask(027);
  ExpectRun({"--isp", "--fw", "\xC3\xA9.bin", "--comm", "1"},
            std::string(kBanner) +
                "LC_CTYPE C\nLC_NUMERIC C.UTF-8\numask 027\n"
                "directory " +
                m_tool.WorkDir() +
                "\n"
                "SIGPIPE ignored\n"
                "wcstombs refuses the path\nZvWideToUtf8 finds the file\n" +
                FailLine("0x100"),
            0);
}

}  // namespace
