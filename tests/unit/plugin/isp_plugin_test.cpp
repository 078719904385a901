// SPDX-License-Identifier: MIT
#include "plugin/isp_plugin.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "plugin/comm_plugin.h"
#include "plugin/zeroed.h"
#include "support/files.h"
#include "support/printed.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kRequired[] = {"IspFlash",        "SetCommInterface", "RecordFWVersion",
                                     "GetKeyFromFlash", "SetUIFunction",    "DumpFlash"};

class IspPlugin : public testing::Test {
 protected:
  ~IspPlugin() override {
    m_plugin.FreeIspDllFile();
    unsetenv("ZVISP_RECORD_RESULT_GetScalerType");
    unsetenv("ZVISP_RECORD_RESULT_IspFlash");
  }

  bool Load(const std::string& name) {
    return LoadFile(std::string(ZVISP_TEST_PLUGIN_DIR) + "/" + name + ".dylib");
  }
  bool LoadFile(const std::string& path) {
    const std::wstring wide(path.begin(), path.end());
    bool loaded = false;
    m_printed = Printed([&] { loaded = m_plugin.LoadIspDllFile(wide.c_str()); });
    return loaded;
  }

  // The answers of the calls that a library must have.
  std::vector<int> AnswersOfRequired() {
    unsigned char key[1220] = {};
    return {m_plugin.IspFlash(m_setting.get()), m_plugin.RecordFWVersion(m_setting.get()),
            m_plugin.GetKeyFromFlash(m_setting.get(), key), m_plugin.DumpFlash(m_setting.get())};
  }
  // The answers of those that it may have.
  std::vector<int> AnswersOfOptional() {
    return {m_plugin.GetUserDefinedInfoFromDDCCI(m_setting.get()),
            m_plugin.IspEeprom(m_setting.get()), m_plugin.EnterISPModeExport(m_setting.get()),
            m_plugin.ResetMCUExport(m_setting.get()), m_plugin.GetScalerType(m_setting.get())};
  }
  // The answers of those that are never looked up.
  std::vector<int> AnswersOfNeverBound() {
    unsigned char info[16] = {};
    return {
        m_plugin.GetFWInfo(m_setting.get()),      m_plugin.SendUserDefinedInfo(m_setting.get()),
        m_plugin.ChipEraseFlash(m_setting.get()), m_plugin.GetMergeFwInfo(m_setting.get(), info),
        m_plugin.SetMergeFwInfo(m_setting.get()), m_plugin.I2CWriteExport(m_setting.get())};
  }

  CCpIsp m_plugin;
  ZeroedPtr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> m_setting =
      MakeZeroed<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
  std::string m_printed;
};

TEST_F(IspPlugin, AnswersSixBeforeALibraryIsLoaded) {
  EXPECT_THAT(AnswersOfRequired(), Each(6));
  EXPECT_THAT(AnswersOfOptional(), Each(6));
  EXPECT_THAT(AnswersOfNeverBound(), Each(6));
  EXPECT_EQ(m_plugin.SetIDev(nullptr), 0);
  m_plugin.SetCommInterface(nullptr);
  m_plugin.SetUIFunction(nullptr, nullptr, nullptr);
}

TEST_F(IspPlugin, BindsRequiredAndOptionalCallsInSilence) {
  ASSERT_TRUE(Load("recording_isp"));
  EXPECT_EQ(m_printed, "");
  EXPECT_THAT(AnswersOfRequired(), Each(0));
  EXPECT_THAT(AnswersOfOptional(), Each(0));
}

TEST_F(IspPlugin, PassesTheLibrarysResultThrough) {
  ASSERT_TRUE(Load("recording_isp"));
  setenv("ZVISP_RECORD_RESULT_GetScalerType", "3", 1);
  setenv("ZVISP_RECORD_RESULT_IspFlash", "-2", 1);
  EXPECT_EQ(m_plugin.GetScalerType(m_setting.get()), 3);
  EXPECT_EQ(m_plugin.IspFlash(m_setting.get()), -2);
}

TEST_F(IspPlugin, NeverLooksSomeCallsUpThoughTheLibraryHasThem) {
  ASSERT_TRUE(Load("recording_isp_with_never_bound"));
  EXPECT_THAT(AnswersOfNeverBound(), Each(6));
  EXPECT_EQ(m_plugin.SetIDev(m_setting.get()), 0);
}

TEST_F(IspPlugin, LoadsALibraryWithoutTheOptionalCalls) {
  ASSERT_TRUE(Load("recording_isp_only_required"));
  EXPECT_THAT(AnswersOfRequired(), Each(0));
  EXPECT_THAT(AnswersOfOptional(), Each(6));
}

TEST_F(IspPlugin, RefusesALibraryThatLacksARequiredCallWithoutAWord) {
  for (const std::string call : kRequired) {
    EXPECT_FALSE(Load("recording_isp_lacks_" + call)) << call;
    EXPECT_EQ(m_printed, "") << call;
    EXPECT_THAT(AnswersOfRequired(), Each(6)) << call;
    EXPECT_THAT(AnswersOfOptional(), Each(6)) << call;
  }
}

TEST_F(IspPlugin, NamesItsCallsInTheOrderOfTheLookUp) {
  std::string names;
  for (const ExportName& name : CCpIsp::ExportNames()) {
    if (name.need != ExportNeed::kNeverLookedUp) names += name.symbol + std::string(" ");
  }
  EXPECT_EQ(names,
            "IspFlash SetCommInterface RecordFWVersion GetKeyFromFlash SetUIFunction DumpFlash "
            "GetUserDefinedInfoFromDDCCI IspEeprom EnterISPModeExport ResetMCUExport "
            "GetScalerType ");
}

TEST_F(IspPlugin, HandsTheCommunicationObjectToTheLibrary) {
  const ScratchDir directory;
  ASSERT_TRUE(Load("recording_isp"));
  setenv("ZVISP_RECORD_DIR", directory.Path().c_str(), 1);
  CZvComm comm;
  m_plugin.SetCommInterface(&comm);
  m_plugin.SetCommInterface(nullptr);
  unsetenv("ZVISP_RECORD_DIR");
  EXPECT_EQ(ReadWholeFile(directory / "calls.txt"),
            "SetCommInterface set\nSetCommInterface null\n");
}

TEST_F(IspPlugin, InitUnbindsEveryCallAndLeavesTheLibraryLoaded) {
  const std::string path = std::string(ZVISP_TEST_PLUGIN_DIR) + "/recording_isp.dylib";
  ASSERT_TRUE(Load("recording_isp"));
  m_plugin.Init();
  EXPECT_THAT(AnswersOfRequired(), Each(6));
  EXPECT_THAT(AnswersOfOptional(), Each(6));
  EXPECT_FALSE(m_plugin.SetCommInterface.IsBound());
  EXPECT_FALSE(m_plugin.SetUIFunction.IsBound());
  m_plugin.FreeIspDllFile();
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  EXPECT_NE(library, nullptr) << "a library that was forgotten is not closed";
  dlclose(library);
}

// Nothing of ours binds them, but their members are open to a host.
TEST_F(IspPlugin, InitUnbindsTheCallsThatAreNeverLookedUp) {
  // An answer of the call's own type, as a library has it.
  const auto bind =
      []<typename... Arguments, int kUnbound>(Export<int(Arguments...), kUnbound>& call) {
        int (*const answer)(Arguments...) = [](Arguments...) { return 77; };
        call.Bind(reinterpret_cast<void*>(answer), "answer");
      };
  bind(m_plugin.GetFWInfo);
  bind(m_plugin.SendUserDefinedInfo);
  bind(m_plugin.ChipEraseFlash);
  bind(m_plugin.GetMergeFwInfo);
  bind(m_plugin.SetMergeFwInfo);
  bind(m_plugin.I2CWriteExport);
  EXPECT_THAT(AnswersOfNeverBound(), Each(77));
  m_plugin.Init();
  EXPECT_THAT(AnswersOfNeverBound(), Each(6));
}

TEST_F(IspPlugin, ASecondLoadReplacesTheFirst) {
  ASSERT_TRUE(Load("recording_isp"));
  ASSERT_TRUE(Load("recording_isp_only_required"));
  EXPECT_THAT(AnswersOfRequired(), Each(0));
  EXPECT_THAT(AnswersOfOptional(), Each(6));
}

TEST_F(IspPlugin, ARefusedLoadLeavesNothingOfTheLibraryBefore) {
  for (const char* library : {"recording_isp_lacks_DumpFlash", "no_such_library"}) {
    ASSERT_TRUE(Load("recording_isp"));
    EXPECT_FALSE(Load(library));
    EXPECT_THAT(AnswersOfRequired(), Each(6)) << library;
    EXPECT_THAT(AnswersOfOptional(), Each(6)) << library;
  }
}

TEST_F(IspPlugin, ReportsTheLoadersReasonWithALetterInsteadOfTheNewline) {
  EXPECT_FALSE(Load("no_such_library"));
  EXPECT_THAT(m_printed, StartsWith("dlopen - "));
  EXPECT_THAT(m_printed, HasSubstr("no_such_library.dylib"));
  EXPECT_THAT(m_printed, EndsWith("n"));
  EXPECT_EQ(m_printed.find('\n'), std::string::npos);
}

TEST_F(IspPlugin, RefusesAFileThatIsNotALibraryAndAnEmptyPath) {
  const ScratchDir directory;
  EXPECT_FALSE(LoadFile(GivenFile(directory / "libIsp.dylib", "not a library")));
  EXPECT_THAT(m_printed, StartsWith("dlopen - "));
  EXPECT_FALSE(LoadFile(""));
  EXPECT_THAT(m_printed, StartsWith("dlopen - "));
}

TEST_F(IspPlugin, FreeingUnbindsAndMayBeRepeated) {
  ASSERT_TRUE(Load("recording_isp"));
  m_plugin.FreeIspDllFile();
  m_plugin.FreeIspDllFile();
  EXPECT_THAT(AnswersOfRequired(), Each(6));
}

TEST_F(IspPlugin, DestroyingTheProxyLeavesTheLibraryLoaded) {
  const std::string path = std::string(ZVISP_TEST_PLUGIN_DIR) + "/recording_isp.dylib";
  {
    CCpIsp other;
    ASSERT_TRUE(other.LoadIspDllFile(std::wstring(path.begin(), path.end()).c_str()));
  }
  EXPECT_NE(dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr);
}

}  // namespace
