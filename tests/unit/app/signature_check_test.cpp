// SPDX-License-Identifier: MIT
//
// The verification of a software signature before programming, and the device of a hub.
#include <string>

#include "support/record_offsets.h"
#include "unit/app/dispatcher_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::StartsWith;

const std::string kCallbacks = "SetUIFunction null null null";

int g_hub_calls = 0;
void* g_hub_device = nullptr;

void* CountedHubDevice() {
  ++g_hub_calls;
  return g_hub_device;
}

class SignatureCheck : public DispatcherTest {
 protected:
  SignatureCheck() { g_hub_calls = 0; }

  void GivenHub(std::uint32_t comm, void* device, void* answer) {
    m_setting->enumCommID = comm;
    m_device = device;
    g_hub_device = answer;
    g_funcZvGetHubDev = CountedHubDevice;
  }
};

TEST_F(SignatureCheck, VerifiesBeforeProgramming) {
  for (const std::uint32_t mode : {0u, 1u, 2u, 3u}) {
    ForgetCalls();
    GivenSoftwareSignature(mode);
    EXPECT_EQ(Execute(), 0u);
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "VerifySignatureExport null", "IspFlash"));
    EXPECT_EQ(Record(1).U32(setting_at::enumSWDigitalSignatureMode), mode);
    EXPECT_EQ(m_out, "");
    EXPECT_FALSE(IsLoaded(IspPluginPath()));
  }
}

TEST_F(SignatureCheck, BelongsToTheNormalModeAndTheSoftwareTypeOnly) {
  constexpr struct {
    std::uint32_t isp_mode;
    std::uint32_t type;
  } kCases[] = {
      // clang-format off
      {1, 0},
      {1, 2},
      {0, 1},
      {2, 1},
      {2, 2},
      // clang-format on
  };
  for (const auto& test : kCases) {
    ForgetCalls();
    GivenSoftwareSignature(2);
    m_setting->enumIspMode = test.isp_mode;
    m_setting->enumDigitalSignatureType = test.type;
    EXPECT_EQ(Execute(), 0u);
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "IspFlash")) << test.isp_mode << test.type;
  }
}

TEST_F(SignatureCheck, ProgramsNothingWhenTheSignatureIsRefused) {
  GivenSoftwareSignature(3);
  GivenAnswer("VerifySignatureExport", "0");
  EXPECT_EQ(Execute(), 16387u);
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "VerifySignatureExport null"));
  EXPECT_TRUE(IsLoaded(IspPluginPath())) << "a run that ends early leaves it loaded";
}

TEST_F(SignatureCheck, ProgramsNothingWithoutTheSignaturePlugIn) {
  GivenSoftwareSignature(3);
  WithoutSignPlugin();
  EXPECT_EQ(Execute(), 16388u);
  EXPECT_THAT(m_out, StartsWith("dlopen - "));
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks));
  EXPECT_TRUE(IsLoaded(IspPluginPath()));
}

TEST_F(SignatureCheck, VerifiesWithTheDevicesKeyInModeFour) {
  GivenSoftwareSignature(4);
  m_setting->enumCommID = 3;
  m_setting->stMapFw.ulCount = 2;
  m_setting->stMapFw.ulTargetBank[255] = 9;
  EXPECT_EQ(Execute(), 0u);
  EXPECT_EQ(m_out, "Get Key From Flash ...\n");
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "GetKeyFromFlash set", "VerifySignatureExport set",
                                   "IspFlash"));
  EXPECT_EQ(Key(1), std::string(1220, '\0')) << "the key's buffer is handed over empty";
  std::string key;
  for (int i = 0; i < 1220; ++i) {
    key += static_cast<char>(i);
  }
  EXPECT_EQ(Key(2), key);
}

TEST_F(SignatureCheck, ReadsTheDevicesKeyWithACopyWithoutFirmware) {
  GivenSoftwareSignature(4);
  m_setting->enumCommID = 3;
  m_setting->stMapFw.ulCount = 2;
  m_setting->stMapFw.ulTargetBank[255] = 9;
  EXPECT_EQ(Execute(), 0u);
  EXPECT_EQ(Record(1).U32(setting_at::enumCommID), 3u);
  EXPECT_EQ(Record(1).U32(setting_at::ulCount), 0u);
  EXPECT_EQ(Record(1).U32(setting_at::ulTargetBank + 4 * 255), 0u);
  EXPECT_EQ(Record(3).U32(setting_at::ulCount), 2u) << "what is programmed keeps its firmware";
  EXPECT_EQ(Record(3).U32(setting_at::ulTargetBank + 4 * 255), 9u);
}

TEST_F(SignatureCheck, EndsWithTheCodeOfTheKeysReading) {
  GivenSoftwareSignature(4);
  GivenAnswer("GetKeyFromFlash", "0x1234");
  EXPECT_EQ(Execute(), 0x1234u);
  EXPECT_EQ(m_out, "Get Key From Flash ...\n");
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "GetKeyFromFlash set"));
  EXPECT_TRUE(IsLoaded(IspPluginPath()));
}

TEST_F(SignatureCheck, EndsWhenTheDevicesKeyDoesNotFit) {
  GivenSoftwareSignature(4);
  GivenAnswer("VerifySignatureExport", "0");
  EXPECT_EQ(Execute(), 16387u);
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "GetKeyFromFlash set", "VerifySignatureExport set"));
}

TEST_F(SignatureCheck, AsksForTheDeviceOfAHubAfterwards) {
  int old_device = 0;
  int new_device = 0;
  const struct {
    std::uint32_t comm;
    void* device;
    int asked;
  } cases[] = {{6, &old_device, 1}, {5, &old_device, 0}, {0, &old_device, 0}, {6, nullptr, 0}};
  for (const auto& test : cases) {
    g_hub_calls = 0;
    GivenSoftwareSignature(2);
    GivenHub(test.comm, test.device, &new_device);
    EXPECT_EQ(Execute(), 0u) << test.comm;
    EXPECT_EQ(g_hub_calls, test.asked) << test.comm;
  }
  g_hub_calls = 0;
  GivenHub(6, &old_device, &new_device);
  g_funcZvGetHubDev = nullptr;
  EXPECT_EQ(Execute(), 0u);
  EXPECT_EQ(g_hub_calls, 0);
}

TEST_F(SignatureCheck, NoDeviceOfTheHubIs11021) {
  int device = 0;
  for (const std::uint32_t mode : {2u, 4u}) {
    ForgetCalls();
    GivenSoftwareSignature(mode);
    GivenHub(6, &device, nullptr);
    EXPECT_EQ(Execute(), 11021u);
    EXPECT_THAT(Calls(), testing::Not(testing::Contains("IspFlash")));
  }
  EXPECT_TRUE(IsLoaded(IspPluginPath()));
}

TEST_F(SignatureCheck, AHubIsLeftAloneWhenNothingWasVerified) {
  int device = 0;
  GivenHub(6, &device, nullptr);
  EXPECT_EQ(Execute(4), 0u);
  EXPECT_EQ(g_hub_calls, 0);
}

TEST_F(SignatureCheck, AHubIsNotAskedWhenTheSignatureIsRefused) {
  int device = 0;
  GivenSoftwareSignature(2);
  GivenHub(6, &device, nullptr);
  GivenAnswer("VerifySignatureExport", "0");
  EXPECT_EQ(Execute(), 16387u);
  EXPECT_EQ(g_hub_calls, 0);
}

}  // namespace
