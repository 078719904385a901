// SPDX-License-Identifier: MIT
//
// The file that was verified is the one that is programmed.
#include "app/verified_file.h"

#include <unistd.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "base/transform.h"
#include "unit/app/dispatcher_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using testing::ElementsAre;

const std::string kCallbacks = "SetUIFunction null null null";

void (*g_at_hub)() = nullptr;
int g_hub_device = 0;

void* ChangeAtTheHub() {
  if (g_at_hub != nullptr) g_at_hub();
  return &g_hub_device;
}

class ProgrammingAVerifiedFile : public DispatcherTest {
 protected:
  ProgrammingAVerifiedFile() {
    GivenFile(m_path, "firmware");
    GivenFile(m_path + ".new", "FIRMWARE");
    GivenSoftwareSignature(2);
    GivenVerified(m_path);
    GivenProgrammed({m_path});
    usleep(20'000);  // more than a tick of the system's clock: a change from here on is seen
  }

  void GivenVerified(const std::string& path) { path.copy(m_sign_args->szFwFile, 259); }
  void GivenProgrammed(const std::vector<std::string>& paths) {
    m_setting->stMapFw.ulCount = static_cast<std::uint32_t>(paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
      const std::wstring path(paths[i].begin(), paths[i].end());
      std::wmemset(m_setting->stMapFw.stBank[i].wszPath, 0, 260);
      path.copy(m_setting->stMapFw.stBank[i].wszPath, 256);
    }
  }

  // The calls of a run that ends without programming, or of a whole one.
  void ExpectRefused(const std::string& what) {
    ForgetCalls();
    EXPECT_EQ(Execute(), 16387u) << what;
    EXPECT_EQ(m_out, "") << what;
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "VerifySignatureExport null")) << what;
  }
  void ExpectProgrammed(const std::string& what) {
    ForgetCalls();
    EXPECT_EQ(Execute(), 0u) << what;
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "VerifySignatureExport null", "IspFlash")) << what;
  }

  const std::string m_path = m_scratch / "fw.bin";
};

TEST_F(ProgrammingAVerifiedFile, NeedsThatFileInTheMap) {
  ExpectProgrammed("the only one");
  GivenProgrammed({"/a", m_path, "/b"});
  ExpectProgrammed("one of them");
  GivenProgrammed({"/a", "/b"});
  ExpectRefused("none of them");
  GivenProgrammed({m_path.substr(0, m_path.size() - 1)});
  ExpectRefused("the beginning of its path");
  GivenProgrammed({m_path + "x"});
  ExpectRefused("a longer path");
}

TEST_F(ProgrammingAVerifiedFile, ComparesThePathNotWhatItLeadsTo) {
  std::filesystem::create_symlink("fw.bin", m_scratch / "link.bin");
  GivenVerified(m_scratch / "link.bin");
  ExpectRefused("the same file by another path");
}

TEST_F(ProgrammingAVerifiedFile, LooksAtTheEntriesThatCountOnly) {
  GivenProgrammed({"/a", m_path});
  m_setting->stMapFw.ulCount = 1;
  ExpectRefused("behind the last entry");
  m_setting->stMapFw.ulCount = 0xFFFFFFFF;
  ExpectProgrammed("a count of a host that has none to spare");
}

TEST_F(ProgrammingAVerifiedFile, MayBeAHostsOwnWithoutAMap) {
  GivenProgrammed({});
  ExpectProgrammed("without a map");
  GivenVerified(m_scratch / "missing.bin");
  ExpectProgrammed("without a file");
}

TEST_F(ProgrammingAVerifiedFile, ConcernsTheActionsThatProgram) {
  GivenProgrammed({"/a"});
  for (const std::uint32_t action : {4u, 5u, 6u, 7u, 17u}) {
    m_setting->enumActionType = action;
    ExpectRefused(std::to_string(action));
  }
  EXPECT_EQ(Execute(CP_ISPTOOL_ACTION_RESET_MCU), 0u);
}

TEST_F(ProgrammingAVerifiedFile, IsNotAskedForWithoutACheckedSignature) {
  GivenProgrammed({"/a"});
  m_setting->enumDigitalSignatureType = CP_DIGITAL_SIGNATURE_HW;
  EXPECT_EQ(Execute(), 0u);
  m_setting->enumDigitalSignatureType = CP_DIGITAL_SIGNATURE_SW;
  m_setting->enumIspMode = ISP_MODE_FACTORY;
  EXPECT_EQ(Execute(), 0u);
}

TEST_F(ProgrammingAVerifiedFile, ComparesNamesThatAreNotAscii) {
  const std::string path = m_scratch / "f\u00fcr.bin";
  GivenVerified(path);
  GivenProgrammed({""});
  ExpectRefused("an empty path");
  const std::wstring wide = CCpTransform().ConvertUTF8StringToUnicode(path);
  wide.copy(m_setting->stMapFw.stBank[0].wszPath, 256);
  ExpectProgrammed("the same name in both encodings");
}

TEST_F(ProgrammingAVerifiedFile, EndsWhenTheFileIsReplacedDuringTheVerification) {
  GivenWish("REPLACE_VerifySignatureExport", m_path);
  ExpectRefused("another file");
}

TEST_F(ProgrammingAVerifiedFile, EndsBeforeAHubIsAskedWhenTheFileIsReplaced) {
  static int asked = 0;
  asked = 0;
  m_setting->enumCommID = 6;
  m_device = &g_hub_device;
  g_funcZvGetHubDev = ChangeAtTheHub;
  g_at_hub = [] { ++asked; };
  GivenWish("REPLACE_VerifySignatureExport", m_path);
  EXPECT_EQ(Execute(), 16387u);
  EXPECT_EQ(asked, 0);
  g_at_hub = nullptr;
}

TEST_F(ProgrammingAVerifiedFile, EndsWhenTheFileIsReplacedWhileTheKeyIsRead) {
  GivenSoftwareSignature(4);
  GivenWish("REPLACE_GetKeyFromFlash", m_path);
  EXPECT_EQ(Execute(), 16387u);
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "GetKeyFromFlash set", "VerifySignatureExport set"));
}

// Asked for the device, a host with a hub has all the time between the two calls.
TEST_F(ProgrammingAVerifiedFile, EndsWhenTheFileIsReplacedBeforeTheCallThatPrograms) {
  static std::string path;
  path = m_path;
  m_setting->enumCommID = 6;
  m_device = &g_hub_device;
  g_funcZvGetHubDev = ChangeAtTheHub;
  const std::string calls = "SetUIFunction null null set";
  g_at_hub = [] { std::filesystem::rename(path + ".new", path); };
  EXPECT_EQ(Execute(), 16387u);
  EXPECT_THAT(Calls(), ElementsAre(calls, "VerifySignatureExport null"));
  g_at_hub = nullptr;
  ForgetCalls();
  EXPECT_EQ(Execute(), 0u) << "nothing changes at the hub any more";
  EXPECT_THAT(Calls(), ElementsAre(calls, "VerifySignatureExport null", "IspFlash"));
}

TEST_F(ProgrammingAVerifiedFile, EndsWhenTheFileAppearsDuringTheVerification) {
  std::filesystem::remove(m_path);
  GivenWish("REPLACE_VerifySignatureExport", m_path);
  ExpectRefused("a file in the place of none");
}

TEST(VerifiedFile, TakesAPathThatFillsItsFieldWithoutAZero) {
  Zeroed<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS> args;
  std::fill(std::begin(args->szFwFile), std::end(args->szFwFile), 'x');
  std::fill(std::begin(args->szSignatureFile), std::end(args->szSignatureFile), 'y');
  Zeroed<STRUCT_C_STYLE_MAP_FW> map;
  map->ulCount = 1;
  std::fill(std::begin(map->stBank[0].wszPath), std::end(map->stBank[0].wszPath), L'x');
  EXPECT_TRUE(VerifiedFile(*args).IsIn(*map));
  map->stBank[0].wszPath[259] = L'\0';
  EXPECT_FALSE(VerifiedFile(*args).IsIn(*map));
}

}  // namespace
