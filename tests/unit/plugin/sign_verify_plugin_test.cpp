// SPDX-License-Identifier: MIT
#include "plugin/sign_verify_plugin.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string>

#include "plugin/digital_sign_args.h"
#include "support/files.h"
#include "support/printed.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::wstring TestLibrary(const std::string& name) {
  const std::string path = std::string(ZVISP_TEST_PLUGIN_DIR) + "/" + name + ".dylib";
  return std::wstring(path.begin(), path.end());
}

bool Load(CCpSignVerify& plugin, const std::wstring& path, std::string& printed) {
  bool loaded = false;
  printed = Printed([&] { loaded = plugin.LoadSignVerfiyDllFile(path.c_str()); });
  return loaded;
}

class SignVerifyPlugin : public testing::Test {
 protected:
  ~SignVerifyPlugin() override {
    m_plugin.FreeSignVerfiyDllFile();
    unsetenv("ZVISP_RECORD_RESULT_SignFwExport");
    unsetenv("ZVISP_RECORD_RESULT_VerifySignatureExport");
  }

  bool Load(const std::string& name) { return ::Load(m_plugin, TestLibrary(name), m_printed); }
  int Sign() { return m_plugin.SignFw(&m_args); }
  int Verify() { return m_plugin.VerifySignature(&m_args, nullptr); }

  CCpSignVerify m_plugin;
  STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS m_args;
  std::string m_printed;
};

TEST_F(SignVerifyPlugin, AnswersNotLoadedBeforeALibraryIsLoaded) {
  EXPECT_EQ(Sign(), 16388);
  EXPECT_EQ(Verify(), 16388);
}

TEST_F(SignVerifyPlugin, LoadsInSilenceAndTurnsNonZeroIntoSuccess) {
  ASSERT_TRUE(Load("recording_sign"));
  EXPECT_EQ(m_printed, "");
  EXPECT_EQ(Sign(), 0);
  EXPECT_EQ(Verify(), 0);
}

TEST_F(SignVerifyPlugin, TurnsZeroIntoTheCodeOfTheCall) {
  ASSERT_TRUE(Load("recording_sign"));
  setenv("ZVISP_RECORD_RESULT_SignFwExport", "0", 1);
  setenv("ZVISP_RECORD_RESULT_VerifySignatureExport", "0", 1);
  EXPECT_EQ(Sign(), 16386);
  EXPECT_EQ(Verify(), 16387);
  setenv("ZVISP_RECORD_RESULT_SignFwExport", "-1", 1);
  setenv("ZVISP_RECORD_RESULT_VerifySignatureExport", "0x40000000", 1);
  EXPECT_EQ(Sign(), 0);
  EXPECT_EQ(Verify(), 0);
}

TEST_F(SignVerifyPlugin, NamesTheExportThatIsMissing) {
  for (const char* call : {"SignFwExport", "VerifySignatureExport"}) {
    EXPECT_FALSE(Load(std::string("recording_sign_lacks_") + call));
    EXPECT_THAT(m_printed, StartsWith("dlsym - "));
    EXPECT_THAT(m_printed, HasSubstr(call));
    EXPECT_EQ(m_printed.back(), '\n');
  }
}

TEST_F(SignVerifyPlugin, ARefusedLoadLeavesNothingOfTheLibraryBefore) {
  for (const char* library : {"recording_sign_lacks_SignFwExport", "no_such_library"}) {
    ASSERT_TRUE(Load("recording_sign"));
    EXPECT_FALSE(Load(library));
    EXPECT_EQ(Sign(), 16388) << library;
    EXPECT_EQ(Verify(), 16388) << library;
  }
}

TEST_F(SignVerifyPlugin, ReportsTheLoadersReasonWithANewline) {
  EXPECT_FALSE(Load("no_such_library"));
  EXPECT_THAT(m_printed, StartsWith("dlopen - "));
  EXPECT_THAT(m_printed, HasSubstr("no_such_library.dylib"));
  EXPECT_EQ(m_printed.back(), '\n');
}

TEST_F(SignVerifyPlugin, RefusesAFileThatIsNotALibrary) {
  const ScratchDir directory;
  const std::string path = GivenFile(directory / "libSignVerify.dylib", "not a library");
  EXPECT_FALSE(::Load(m_plugin, std::wstring(path.begin(), path.end()), m_printed));
  EXPECT_THAT(m_printed, StartsWith("dlopen - "));
}

TEST_F(SignVerifyPlugin, HandsNoEmptyPathToTheLoader) {
  EXPECT_FALSE(::Load(m_plugin, L"", m_printed));
  EXPECT_THAT(m_printed, StartsWith("dlopen - "));
}

TEST_F(SignVerifyPlugin, InitUnbindsBothCallsAndLeavesTheLibraryLoaded) {
  const std::string path = std::string(ZVISP_TEST_PLUGIN_DIR) + "/recording_sign.dylib";
  ASSERT_TRUE(Load("recording_sign"));
  m_plugin.Init();
  EXPECT_EQ(Sign(), 16388);
  EXPECT_EQ(Verify(), 16388);
  m_plugin.FreeSignVerfiyDllFile();
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  EXPECT_NE(library, nullptr) << "a library that was forgotten is not closed";
  dlclose(library);
}

TEST_F(SignVerifyPlugin, FreeingUnbindsAndMayBeRepeated) {
  ASSERT_TRUE(Load("recording_sign"));
  m_plugin.FreeSignVerfiyDllFile();
  m_plugin.FreeSignVerfiyDllFile();
  EXPECT_EQ(Sign(), 16388);
}

}  // namespace
