// SPDX-License-Identifier: MIT
//
// Plug-ins that cannot be loaded: what the tool says, and that it looks nowhere else for them.
#include <dlfcn.h>

#include "support/end_to_end.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What the platform's loader says of a library; asked in this process, where it fails the same way.
std::string LoaderMessage(const std::string& path) {
  EXPECT_EQ(dlopen(path.c_str(), RTLD_NOW), nullptr) << path;
  const char* const message = dlerror();
  return message == nullptr ? "" : message;
}

class PluginLoading : public testing::Test {
 protected:
  // Expects that the ISP plug-in is refused with what the loader says, or in silence.
  void ExpectNotLoaded(const std::string& loader_line) {
    const RunResult run = m_tool.Run({"--resetmcu"});
    EXPECT_EQ(run.out, kBanner + loader_line + FailLine("0xD67"));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 103);
    EXPECT_THAT(m_tool.TakeCallLines(), IsEmpty());
  }

  // The same for the signature plug-in.
  void ExpectSignNotLoaded(const std::string& loader_line) {
    GivenFile(m_tool / "a.bin", "firmware");
    const RunResult run = m_tool.Run({"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin"});
    EXPECT_EQ(run.out, kBanner + loader_line + FailLine("0x4004"));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(m_tool.TakeCallLines(), IsEmpty());
  }

  Installation m_tool;
};

TEST_F(PluginLoading, AMissingIspPluginIsToldInTheLoadersWordsEndingInALetterN) {
  ExpectNotLoaded("dlopen - " + LoaderMessage(m_tool.IspPluginPath()) + "n");
}

#ifdef __linux__
TEST_F(PluginLoading, AMissingPluginIsAskedForByItsFullPathBesideTheExecutable) {
  ExpectNotLoaded(
      "dlopen - " + m_tool.ToolDir() +
      "PlugIn/libIsp.dylib: cannot open shared object file: No such file or directoryn");
}
#endif

TEST_F(PluginLoading, AFileThatIsNoLibraryIsToldInTheLoadersWords) {
  GivenFile(m_tool.IspPluginPath(), "this is no library");
  ExpectNotLoaded("dlopen - " + LoaderMessage(m_tool.IspPluginPath()) + "n");
}

TEST_F(PluginLoading, APluginThatLacksARequiredCallIsRefusedInSilence) {
  for (const char* call : {"IspFlash", "SetCommInterface", "RecordFWVersion", "GetKeyFromFlash",
                           "SetUIFunction", "DumpFlash"}) {
    SCOPED_TRACE(call);
    m_tool.WithIspPlugin(TestPlugin(std::string("recording_isp_lacks_") + call));
    ExpectNotLoaded("");
  }
}

TEST_F(PluginLoading, APluginThatLacksACallIsUnloadedAtOnce) {
  m_tool.WithIspPlugin(TestPlugin("recording_isp_lacks_DumpFlash"));
  Command command = m_tool.Line({"--resetmcu"});
  command.environment["ZVISP_RECORD_UNLOAD"] = "unloaded\n";
  EXPECT_EQ(RunCommand(command).out, std::string(kBanner) + "unloaded\n" + FailLine("0xD67"));
}

TEST_F(PluginLoading, APluginInTheWorkingDirectoryOrOnTheLoadersPathIsNotTaken) {
  const std::string library = ReadWholeFile(TestPlugin("recording_isp"));
  GivenFile(m_tool / "PlugIn/libIsp.dylib", library);
  GivenFile(m_tool / "libIsp.dylib", library);
  GivenFile(m_tool.ToolDir() + "libIsp.dylib", library);
  Command command = m_tool.Line({"--resetmcu"});
  command.environment["LD_LIBRARY_PATH"] = m_tool.WorkDir() + ":" + m_tool.ToolDir();
  command.environment["DYLD_LIBRARY_PATH"] = m_tool.WorkDir() + ":" + m_tool.ToolDir();
  EXPECT_EQ(RunCommand(command).status, 103);
  EXPECT_THAT(m_tool.TakeCallLines(), IsEmpty());
}

TEST_F(PluginLoading, AMissingSignaturePluginIsToldWithALineEnd) {
  ExpectSignNotLoaded("dlopen - " + LoaderMessage(m_tool.SignPluginPath()) + "\n");
}

TEST_F(PluginLoading, ASignatureFileThatIsNoLibraryIsToldWithALineEnd) {
  GivenFile(m_tool.SignPluginPath(), "this is no library");
  ExpectSignNotLoaded("dlopen - " + LoaderMessage(m_tool.SignPluginPath()) + "\n");
}

TEST_F(PluginLoading, ASignaturePluginThatLacksACallIsToldInTheLoadersWords) {
  for (const char* call : {"VerifySignatureExport", "SignFwExport"}) {
    SCOPED_TRACE(call);
    m_tool.WithSignPlugin(TestPlugin(std::string("recording_sign_lacks_") + call));
    void* const library = dlopen(m_tool.SignPluginPath().c_str(), RTLD_NOW);
    ASSERT_NE(library, nullptr);
    ASSERT_EQ(dlsym(library, call), nullptr);
    const std::string message = dlerror();
    dlclose(library);
    ExpectSignNotLoaded("dlsym - " + message + "\n");
  }
}

TEST_F(PluginLoading, SigningDoesNotNeedTheIspPlugin) {
  m_tool.WithSignPlugin(TestPlugin("recording_sign"));
  GivenFile(m_tool / "a.bin", "firmware");
  const RunResult run = m_tool.Run({"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin"});
  EXPECT_EQ(run.out, std::string(kBanner) + kSuccess);
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre("SignFwExport"));
}

TEST_F(PluginLoading, OtherActionsDoNotNeedTheSignaturePlugin) {
  m_tool.WithIspPlugin(TestPlugin("recording_isp"));
  EXPECT_EQ(m_tool.Run({"--resetmcu"}).out, std::string(kBanner) + kSuccess);
}

}  // namespace
