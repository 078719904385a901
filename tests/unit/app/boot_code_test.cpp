// SPDX-License-Identifier: MIT
//
// The factory programming of the boot code before the action.
#include <algorithm>
#include <filesystem>
#include <string>

#include "base/path.h"
#include "support/record_offsets.h"
#include "unit/app/dispatcher_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

const std::string kCallbacks = "SetUIFunction null null null";

int g_hub_calls = 0;
void* g_hub_device = nullptr;

class BootCode : public DispatcherTest {
 protected:
  BootCode() {
    m_setting->enumActionType = CP_ISPTOOL_ACTION_ISP_USER;
    m_setting->enumBootCodeType = 1;
    m_setting->enumIspMode = 2;
    m_setting->enumCommID = 6;
    GivenBoot(GivenSparseFile(m_scratch / "boot.bin", 65537));
  }

  void GivenBoot(const std::string& path) {
    std::fill_n(m_setting->szBootFwPath, 260, '\0');
    path.copy(m_setting->szBootFwPath, 259);
  }
  void GivenHub(void* answer) {
    static int device = 0;
    m_device = &device;
    g_hub_calls = 0;
    g_hub_device = answer;
    g_funcZvGetHubDev = []() -> void* {
      ++g_hub_calls;
      return g_hub_device;
    };
  }

  // What a record holds that nobody but its constructor and the action wrote.
  static RecordBytes DefaultRecord() {
    return RecordBytes(setting_at::kRecordBytes)
        .PutU32(setting_at::enumActionType, 4)
        .PutU32(setting_at::bAutoSlaveAddr, 0xFFFFFFFF)
        .PutU8(setting_at::ucSlaveAddr, 0x94)
        .Fill(setting_at::ucFlagData, 1220, 0xFF)
        .Fill(setting_at::ucSlave, 2, 0xFF)
        .PutU8(setting_at::ucDataLen, 1)
        .Fill(setting_at::ucData, 256, 0xFF);
  }
};

TEST_F(BootCode, IsProgrammedBeforeTheActionWithARecordOfItsOwn) {
  EXPECT_EQ(Execute(), 0u);
  EXPECT_EQ(m_out, "");
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "IspFlash", "IspFlash"));
  const RecordBytes expected =
      DefaultRecord()
          .PutU32(setting_at::ulCount, 2)
          .PutU32(setting_at::ulTargetBank + 4, 1)
          .PutWide(setting_at::wszPath, m_scratch / "boot.bin")
          .PutU32(setting_at::ulFileBank + setting_at::kEntryBytes, 1)
          .PutWide(setting_at::wszPath + setting_at::kEntryBytes, m_scratch / "boot.bin");
  EXPECT_TRUE(SameBytes(Record(1), expected));
  EXPECT_EQ(Record(2).U32(setting_at::enumActionType), 5u);
  EXPECT_EQ(Record(2).U32(setting_at::enumCommID), 6u);
  EXPECT_FALSE(IsLoaded(IspPluginPath()));
}

TEST_F(BootCode, IsLookedUpFromTheExecutablesDirectory) {
  GivenBoot("unit_app");
  const std::string path = GetCurrentProcessDir(nullptr).GetUtf8String() + "unit_app";
  ASSERT_TRUE(FileExists(path));
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(m_scratch.Path());
  EXPECT_EQ(Execute(), 0u);
  std::filesystem::current_path(before);
  EXPECT_EQ(m_out, "");
  EXPECT_EQ(Record(1).U32(setting_at::ulCount), (std::filesystem::file_size(path) + 65535) / 65536);
  EXPECT_EQ(Record(1).Wide(setting_at::wszPath), path);
}

TEST_F(BootCode, NeedsTheNewBootCodeAndTheFactoryModeAndAPath) {
  const struct {
    std::uint32_t boot_code;
    std::uint32_t isp_mode;
    std::string path;
  } cases[] = {{0, 2, "x"}, {2, 2, "x"}, {1, 1, "x"}, {1, 0, "x"}, {1, 2, ""}};
  for (const auto& test : cases) {
    ForgetCalls();
    m_setting->enumBootCodeType = test.boot_code;
    m_setting->enumIspMode = test.isp_mode;
    GivenBoot(test.path);
    EXPECT_EQ(Execute(), 0u);
    EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "IspFlash"));
  }
}

TEST_F(BootCode, IsProgrammedBeforeEveryActionOnADevice) {
  EXPECT_EQ(Execute(9), 0u);
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "IspFlash"));
}

TEST_F(BootCode, ThatIsMissingIsReportedAndHandedOverAsAnEmptyMap) {
  GivenBoot("/nowhere/boot.bin");
  EXPECT_EQ(Execute(), 0u);
  EXPECT_EQ(m_out, "File open fail! /nowhere/boot.bin\n");
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks, "IspFlash", "IspFlash"));
  EXPECT_TRUE(SameBytes(Record(1), DefaultRecord()));
}

TEST_F(BootCode, ThatFailsEndsTheRun) {
  GivenHub(nullptr);
  GivenAnswer("IspFlash", "77");
  EXPECT_EQ(Execute(), 77u);
  EXPECT_THAT(Calls(), ElementsAre(kCallbacks.substr(0, 24) + "set", "IspFlash"));
  EXPECT_EQ(g_hub_calls, 0);
  EXPECT_TRUE(IsLoaded(IspPluginPath())) << "a run that ends early leaves it loaded";
}

TEST_F(BootCode, AsksForTheDeviceOfAHubAfterwards) {
  int new_device = 0;
  GivenHub(&new_device);
  EXPECT_EQ(Execute(), 0u);
  EXPECT_EQ(g_hub_calls, 1);
  EXPECT_EQ(Calls().size(), 3u);
}

TEST_F(BootCode, NoDeviceOfTheHubIs11021) {
  GivenHub(nullptr);
  EXPECT_EQ(Execute(), 11021u);
  EXPECT_EQ(g_hub_calls, 1);
  EXPECT_EQ(Calls().size(), 2u);
  EXPECT_TRUE(IsLoaded(IspPluginPath()));
}

}  // namespace
