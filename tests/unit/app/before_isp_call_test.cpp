// SPDX-License-Identifier: MIT
//
// What a host hears before the ISP plug-in gets a record, and plug-ins in a directory of the
// host's choice.
#include "app/execute_process.h"
#include "unit/app/dispatcher_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> g_heard;

class BeforeIspCall : public DispatcherTest {
 protected:
  BeforeIspCall() {
    g_heard.clear();
    g_funcBeforeIspCall = [](const char* name) { g_heard.emplace_back(name); };
  }
};

TEST_F(BeforeIspCall, TheHostHearsTheNameOfTheActionsExport) {
  constexpr struct {
    std::uint32_t action;
    const char* name;
  } kCases[] = {
      {4, "IspFlash"},
      {8, "RecordFWVersion"},
      {16, "DumpFlash"},
      {20, "IspEeprom"},
  };
  for (const auto& test : kCases) {
    g_heard.clear();
    EXPECT_EQ(Execute(test.action), 0u);
    EXPECT_THAT(g_heard, ElementsAre(test.name));
  }
}

TEST_F(BeforeIspCall, TheHostHearsOfTheCallBeforeItIsMade) {
  static std::string calls_file;
  calls_file = m_scratch / "calls/calls.txt";
  g_funcBeforeIspCall = [](const char*) { g_heard.push_back(ReadWholeFile(calls_file)); };
  Execute(4);
  EXPECT_THAT(g_heard, ElementsAre("SetUIFunction null null null\n"));
}

TEST_F(BeforeIspCall, TheHostHearsOfTheKeyAndOfTheBootCode) {
  GivenSoftwareSignature(4);
  Execute();
  EXPECT_THAT(g_heard, ElementsAre("GetKeyFromFlash", "IspFlash"));

  g_heard.clear();
  m_setting->enumDigitalSignatureType = 0;
  m_setting->enumIspMode = 2;
  m_setting->enumBootCodeType = 1;
  m_setting->szBootFwPath[0] = '/';
  Execute(4);
  EXPECT_THAT(g_heard, ElementsAre("IspFlash", "IspFlash"));
}

TEST_F(BeforeIspCall, AnExportThatThePlugInLacksIsNoCall) {
  WithIspPlugin("recording_isp_only_required");
  EXPECT_EQ(Execute(20), 6u);
  EXPECT_EQ(Execute(22), 6u);
  EXPECT_THAT(g_heard, IsEmpty());
}

TEST_F(BeforeIspCall, PlugInsComeFromTheDirectoryThatTheHostNames) {
  CCpZvString directory;
  directory = m_scratch.Path() + "/";
  m_setting->enumActionType = 4;
  const auto from = [&](const CCpZvString& where) {
    return ExecuteProcessFrom(where, m_setting.get(), m_sign_args.get(), CCpZvString(L"isp.dylib"),
                              CCpZvString(L"sign.dylib"), nullptr);
  };
  EXPECT_EQ(from(directory), 0u);
  EXPECT_THAT(g_heard, ElementsAre("IspFlash"));
  std::uint32_t without = 0;
  Printed([&] { without = from(CCpZvString()); });
  EXPECT_EQ(without, kIspPluginNotLoaded);
}

}  // namespace
