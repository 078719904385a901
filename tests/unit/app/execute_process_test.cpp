// SPDX-License-Identifier: MIT
//
// The choice of the plug-in's call. What happens before it is in signature_check_test.cpp and
// boot_code_test.cpp.
#include "app/execute_process.h"

#include <unistd.h>

#include <string>

#include "support/record_offsets.h"
#include "unit/app/dispatcher_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

const std::string kCallbacks = "SetUIFunction null null null";

class ExecuteProcessOf : public DispatcherTest {};

TEST_F(ExecuteProcessOf, AnActionIsTheOneCallThatBelongsToIt) {
  constexpr struct {
    std::uint32_t action;
    const char* call;
  } kCases[] = {
      // clang-format off
      {4, "IspFlash"},
      {5, "IspFlash"},
      {6, "IspFlash"},
      {7, "IspFlash"},
      {17, "IspFlash"},
      {8, "RecordFWVersion"},
      {16, "DumpFlash"},
      {19, "GetUserDefinedInfoFromDDCCI"},
      {20, "IspEeprom"},
      {21, "EnterISPModeExport"},
      {15, "ResetMCUExport"},
      {25, "GetScalerType"},
      // clang-format on
  };
  for (const auto& test : kCases) {
    ForgetCalls();
    EXPECT_EQ(Execute(test.action), 0u) << test.action;
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks, test.call)) << test.action;
    EXPECT_EQ(Record(1).U32(setting_at::enumActionType), test.action);
    EXPECT_EQ(m_out, "");
  }
}

TEST_F(ExecuteProcessOf, AnActionWithoutACallSucceedsAndLeavesTheDeviceAlone) {
  for (const std::uint32_t action : {9u, 10u, 11u, 12u, 13u, 14u, 0u, 26u, 0xFFFFFFFFu}) {
    ForgetCalls();
    EXPECT_EQ(Execute(action), 0u) << action;
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks)) << action;
  }
}

TEST_F(ExecuteProcessOf, AnActionWhoseCallIsNeverLookedUpEndsWithSix) {
  WithIspPlugin("recording_isp_with_never_bound");
  for (const std::uint32_t action : {3u, 18u, 22u, 23u, 24u}) {
    ForgetCalls();
    EXPECT_EQ(Execute(action), 6u) << action;
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks)) << action;
  }
}

TEST_F(ExecuteProcessOf, AnActionWhoseCallThePlugInLacksEndsWithSix) {
  WithIspPlugin("recording_isp_only_required");
  for (const std::uint32_t action : {19u, 20u, 21u, 15u, 25u}) {
    EXPECT_EQ(Execute(action), 6u) << action;
  }
}

TEST_F(ExecuteProcessOf, MergingIsReadOrWriteAndNothingElse) {
  constexpr struct {
    std::uint32_t type;
    std::uint32_t result;
  } kCases[] = {
      {0, 6},
      {1, 6},
      {2, 0},
      {0xFFFFFFFF, 0},
  };
  for (const auto& test : kCases) {
    m_setting->enumMergeFwInfoType = test.type;
    EXPECT_EQ(Execute(22), test.result) << test.type;
  }
}

TEST_F(ExecuteProcessOf, AnActionPassesThePlugInsCodeThrough) {
  GivenAnswer("IspFlash", "0x80000001");
  EXPECT_EQ(Execute(4), 0x80000001u);
  GivenAnswer("GetScalerType", "3");
  EXPECT_EQ(Execute(25), 3u);
}

TEST_F(ExecuteProcessOf, AnActionHandsTheWholeRecordOver) {
  m_setting->stMapFw.ulCount = 1;
  m_setting->stMergeFwInfo.ucData[15] = 0xAB;
  EXPECT_EQ(Execute(4), 0u);
  const std::string bytes(reinterpret_cast<const char*>(m_setting.get()), 275328);
  EXPECT_TRUE(SameBytes(Record(1).Bytes(), bytes));
}

TEST_F(ExecuteProcessOf, ACompletedActionUnloadsThePlugIn) {
  EXPECT_EQ(Execute(4), 0u);
  EXPECT_FALSE(IsLoaded(IspPluginPath()));
  GivenAnswer("IspFlash", "5");
  EXPECT_EQ(Execute(4), 5u);
  EXPECT_FALSE(IsLoaded(IspPluginPath()));
}

TEST_F(ExecuteProcessOf, AMissingIspPlugInIs3431) {
  WithoutIspPlugin();
  EXPECT_EQ(Execute(4), 3431u);
  EXPECT_THAT(m_out, StartsWith("dlopen - "));
  EXPECT_THAT(m_out, EndsWith("n"));
  EXPECT_EQ(Execute(9), 3431u) << "also for an action without a call";
}

TEST_F(ExecuteProcessOf, AnIspPlugInThatLacksARequiredCallIs3431) {
  WithIspPlugin("recording_isp_lacks_DumpFlash");
  EXPECT_EQ(Execute(4), 3431u);
  EXPECT_EQ(m_out, "");
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(ExecuteProcessOf, SigningCallsTheSignaturePlugInAlone) {
  WithoutIspPlugin();
  m_sign_args->nKeyPairIndex = 4;
  EXPECT_EQ(Execute(2), 0u);
  EXPECT_THAT(Calls(), ElementsAre("SignFwExport"));
  EXPECT_EQ(Record(0).U32(sign_at::nKeyPairIndex), 4u);
  EXPECT_EQ(m_out, "");
  GivenAnswer("SignFwExport", "0");
  EXPECT_EQ(Execute(2), 16386u);
}

TEST_F(ExecuteProcessOf, VerifyingCallsTheSignaturePlugInAloneAndWithoutAKey) {
  EXPECT_EQ(Execute(1), 0u);
  EXPECT_THAT(Calls(), ElementsAre("VerifySignatureExport null"));
  EXPECT_FALSE(IsLoaded(IspPluginPath()));
  EXPECT_TRUE(IsLoaded(SignPluginPath())) << "it stays loaded";
  GivenAnswer("VerifySignatureExport", "0");
  EXPECT_EQ(Execute(1), 16387u);
}

TEST_F(ExecuteProcessOf, AMissingSignaturePlugInIs16388) {
  WithoutSignPlugin();
  for (const std::uint32_t action : {1u, 2u}) {
    EXPECT_EQ(Execute(action), 16388u) << action;
    EXPECT_THAT(m_out, StartsWith("dlopen - "));
    EXPECT_THAT(Calls(), IsEmpty());
  }
}

TEST_F(ExecuteProcessOf, ASignaturePlugInThatLacksACallIs16388) {
  WithSignPlugin("recording_sign_lacks_SignFwExport");
  EXPECT_EQ(Execute(1), 16388u);
  EXPECT_THAT(m_out, StartsWith("dlsym - "));
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(ExecuteProcessOf, AnActionHandsTheCallbacksOfTheHostOver) {
  g_funcShowMsg = [](wchar_t*) {};
  EXPECT_EQ(Execute(9), 0u);
  g_funcReturnProg = [](int) {};
  g_funcZvGetHubDev = []() -> void* { return nullptr; };
  EXPECT_EQ(Execute(9), 0u);
  EXPECT_THAT(Calls(), ElementsAre("SetUIFunction null set null", "SetUIFunction set set set"));
}

TEST(LoadSignVerfiyDll, TakesThePathAndNotTheDirectory) {
  CCpSignVerify proxy;
  CCpZvString path;
  path = std::string(ZVISP_TEST_PLUGIN_DIR) + "/recording_sign.dylib";
  EXPECT_EQ(LoadSignVerfiyDll(proxy, L"/nowhere/", path), 0u);
  std::uint32_t result = 0;
  EXPECT_THAT(Printed([&] { result = LoadSignVerfiyDll(proxy, path, L"/nowhere/x.dylib"); }),
              StartsWith("dlopen - "));
  EXPECT_EQ(result, 16388u);
}

// Real and effective user or group differ, as in a program with the set-uid or set-gid bit.
TEST_F(ExecuteProcessOf, ASetUidProcessLoadsNoPlugIn) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  for (const std::uint32_t action : {1u, 2u, 4u, 9u}) {
    ASSERT_EQ(seteuid(65534), 0);
    const std::uint32_t result = Execute(action);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(result, 3431u) << action;
    EXPECT_EQ(m_out,
              "Plug-ins are not loaded into a set-uid program: remove the set-uid bit of the "
              "executable\n");
  }
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(ExecuteProcessOf, ASetGidProcessLoadsPlugIns) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can take another group";
  ASSERT_EQ(setegid(65534), 0);
  const std::uint32_t result = Execute(4);
  ASSERT_EQ(setegid(0), 0);
  EXPECT_EQ(result, 0u);
  EXPECT_THAT(Calls(), testing::Contains("IspFlash"));
}

}  // namespace
