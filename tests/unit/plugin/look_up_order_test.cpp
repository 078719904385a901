// SPDX-License-Identifier: MIT
//
// The order in which the proxies look up the calls of a library: the first one that is missing is
// the one that the loader's message names.
#include <dlfcn.h>

#include <string>
#include <vector>

#include "plugin/isp_plugin.h"
#include "plugin/sign_verify_plugin.h"
#include "support/looked_up_plugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

class LookUpOrder : public testing::Test {
 protected:
  void SetUp() override {
#ifdef __APPLE__
    GTEST_SKIP() << "this platform's loader cannot tell a library that it is looked up";
#endif
  }

  std::wstring Path() const {
    return std::wstring(m_path.begin(), m_path.end());
  }

  // The names so far; the library is loaded.
  std::vector<std::string> LookedUpNames() const {
    void* const handle = dlopen(m_path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    const auto* const noted = static_cast<const LookedUp*>(dlsym(handle, "looked_up"));
    const std::vector<std::string> names(noted->names, noted->names + noted->count);
    dlclose(handle);
    return names;
  }

 private:
  const std::string m_path = ZVISP_TEST_PLUGIN_DIR "/looked_up.dylib";
};

TEST_F(LookUpOrder, OfTheIspPlugin) {
  CCpIsp plugin;
  ASSERT_TRUE(plugin.LoadIspDllFile(Path().c_str()));
  EXPECT_THAT(LookedUpNames(),
              ElementsAre("IspFlash", "SetCommInterface", "RecordFWVersion", "GetKeyFromFlash",
                          "SetUIFunction", "DumpFlash", "GetUserDefinedInfoFromDDCCI", "IspEeprom",
                          "EnterISPModeExport", "ResetMCUExport", "GetScalerType"));
  plugin.FreeIspDllFile();
}

TEST_F(LookUpOrder, OfTheSignaturePlugin) {
  CCpSignVerify plugin;
  ASSERT_TRUE(plugin.LoadSignVerfiyDllFile(Path().c_str()));
  EXPECT_THAT(LookedUpNames(), ElementsAre("VerifySignatureExport", "SignFwExport"));
  plugin.FreeSignVerfiyDllFile();
}

}  // namespace
