// SPDX-License-Identifier: MIT
//
// What keeps a display safe when paths are long, files change, readers leave and rights differ.
#include <signal.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "support/end_to_end.h"
#include "support/record_offsets.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
namespace fs = std::filesystem;

constexpr const char* kCallbacks = "SetUIFunction null null null";
constexpr const char* kVerified = "VerifySignatureExport null";

class SafeProgramming : public EndToEnd {
 protected:
  SafeProgramming() {
    m_tool.WithSignPlugin(TestPlugin("recording_sign"));
    GivenFirmware(m_tool / "a.bin", 65536);
    GivenFile(m_tool / "a.sig", "signature");
  }

  Words SignedIsp(const std::string& fw) const {
    return {"--isp", "--sw", "--dsmode", "2", "--fw", fw, "--signfile", "a.sig"};
  }

  // A path of so many bytes in the working directory.
  std::string LongPath(std::size_t bytes) const {
    const std::string directory = m_tool / std::string(100, 'd') + "/" + std::string(50, 'e') + "/";
    return directory + std::string(bytes - directory.size(), 'f');
  }
};

TEST_F(SafeProgramming, ALongPathNeverProgramsAnotherFileThanTheVerifiedOne) {
  for (const std::size_t bytes : {257u, 258u, 259u}) {
    const std::string verified = GivenFirmware(LongPath(bytes), 65536);
    GivenFirmware(verified.substr(0, 256), 65536, 2);
    ExpectRun(SignedIsp(verified), kBanner + FailLine("0x4003"), 3);
    EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, kVerified)) << bytes;
    ExpectSuccess({"--isp", "--fw", verified});
    EXPECT_EQ(m_tool.TakeRecord().Wide(setting_at::wszPath), verified.substr(0, 256))
        << "cut as ever";
  }
  ExpectSuccess(SignedIsp(GivenFirmware(LongPath(256), 65536)));
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, kVerified, "IspFlash"));
}

TEST_F(SafeProgramming, APathThatDoesNotFitIsRefusedWithASignatureType) {
  const std::string fits(259, 'x');
  const std::string message = "Path is too long for a signed run: " + fits + "x\n";
  for (const char* const option :
       {"--boot", "--signfile", "--keypair", "--vkfile", "--skfile", "--subcert", "--nextvkfile"}) {
    for (const char* const type : {"--sw", "--hw"}) {
      ExpectRejected({"--isp", type, "--dsmode", "2", "--fw", "a.bin", option, fits + "x"},
                     message);
    }
    ExpectSuccess({"--isp", "--hw", "--dsmode", "2", "--fw", "a.bin", option, fits});
    ExpectSuccess({"--isp", "--fw", "a.bin", option, fits + "x"});
    m_tool.TakeCalls();
  }
  ExpectRejected({"--sign", "--sw", "--dsmode", "2", "--fw", fits + "x"}, message);
}

TEST_F(SafeProgramming, ADefaultSignaturePathThatDoesNotFitIsRefusedBeforeSigning) {
  const std::string firmware = GivenFirmware(LongPath(256), 65536);
  ExpectRejected({"--sign", "--sw", "--dsmode", "2", "--fw", firmware},
                 "Path is too long for a signed run: " + firmware + ".sig\n");
  ExpectSuccess({"--sign", "--sw", "--dsmode", "2", "--fw", GivenFirmware(LongPath(255), 65536)});
}

TEST_F(SafeProgramming, AShortNameWhoseFullPathDoesNotFitCountsAsMissing) {
  const std::string firmware = GivenFirmware(LongPath(260), 65536);
  Command command = m_tool.Line({"--verify", "--sw", "--dsmode", "2", "--fw",
                                 fs::path(firmware).filename(), "--signfile", m_tool / "a.sig"});
  command.directory = fs::path(firmware).parent_path();
  EXPECT_EQ(RunCommand(command).out,
            "Digital signature: fw file is not exist! " + firmware + "\n" + kRejected);
}

TEST_F(SafeProgramming, AFileThatIsReplacedDuringTheVerificationIsNotProgrammed) {
  GivenFirmware(m_tool / "a.bin.new", 65536, 2);
  Command command = m_tool.Line(SignedIsp("a.bin"));
  command.environment["ZVISP_RECORD_REPLACE_VerifySignatureExport"] = m_tool / "a.bin";
  const RunResult run = RunCommand(command);
  EXPECT_EQ(run.out, kBanner + FailLine("0x4003"));
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, kVerified));
}

TEST_F(SafeProgramming, AReaderThatLeavesEndsNoRun) {
  Command command = m_tool.Line({"--isp", "--fw", "a.bin"});
  command.output = OutputTo::kNoReader;
  command.environment["ZVISP_RECORD_PRINT"] = std::string(100'000, 'x') + "\n";
  const RunResult run = RunCommand(command);
  EXPECT_EQ(run.signal, 0);
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(m_tool.TakeCallLines(), ElementsAre(kCallbacks, "IspFlash"));
}

TEST_F(SafeProgramming, APluginFindsTheSignalOfAPipeIgnored) {
  Command command = m_tool.Line({"--isp", "--fw", "a.bin"});
  command.environment["ZVISP_RECORD_CRASH"] = std::to_string(SIGPIPE);
  EXPECT_EQ(RunCommand(command).out, kBanner + std::string(kSuccess));
}

// Blocked for ever, the run would never end.
TEST_F(SafeProgramming, AFifoInPlaceOfATextFileIsNotWaitedFor) {
  ASSERT_EQ(mkfifo((m_tool / "IspUserDefined.txt").c_str(), 0600), 0);
  ExpectRejected({"--isp", "--searchfw", "userdefined"}, "get userdefined info fail!\n");
  ASSERT_EQ(mkfifo((m_tool / "fifo.ini").c_str(), 0600), 0);
  ExpectRejected({"--isp", "--settingfile", m_tool / "fifo.ini", "--searchfw", "prefix"},
                 "Cannot fw prefix setting!\n");
}

TEST_F(SafeProgramming, AnUnknownLocaleOfTheTimeLeavesTheCharacterTypeAlone) {
  GivenFirmware(m_tool / "\u00fc.bin", 65536);
  GivenFile(m_tool / "x.ini", "[ISP_Fw]\nstrFwPrefix=\u00fc\n");
  for (const char* const character_type : {"C", "C.UTF-8"}) {
    Command command =
        m_tool.Line({"--isp", "--settingfile", m_tool / "x.ini", "--searchfw", "prefix"});
    command.environment["LC_ALL"] = std::nullopt;
    command.environment["LC_CTYPE"] = character_type;
    command.environment["LC_TIME"] = "xx_YY.no-such-locale";
    EXPECT_EQ(RunCommand(command).out, character_type == "C"s
                                           ? "Cannot fw prefix setting!\n"s + kRejected
                                           : kBanner + std::string(kSuccess))
        << character_type;
  }
}

// Gives an executable of its own, not a link to the build's, to a user and a group.
void Give(const std::string& executable, uid_t owner, gid_t group, mode_t mode) {
  fs::copy_file(executable, executable + ".copy");
  fs::rename(executable + ".copy", executable);
  ASSERT_EQ(chown(executable.c_str(), owner, group), 0);
  ASSERT_EQ(chmod(executable.c_str(), mode), 0);
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZVISP_LOOKS_FOR_LEAKS
#endif
#endif
#ifdef ZVISP_LOOKS_FOR_LEAKS
constexpr bool kLooksForLeaks = true;
#else
constexpr bool kLooksForLeaks = false;
#endif

TEST_F(SafeProgramming, ASetUidExecutableLoadsNoPluginAndASetGidOneDoes) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give an executable to somebody else";
  if (kLooksForLeaks) GTEST_SKIP() << "a set-uid process cannot be searched for leaks";
  if (std::getenv("ZVISP_TEST_LAUNCHER") != nullptr) GTEST_SKIP() << "a launcher drops the bits";
  struct statvfs mount = {};
  ASSERT_EQ(statvfs(m_tool.Executable().c_str(), &mount), 0);
  if ((mount.f_flag & ST_NOSUID) != 0) GTEST_SKIP() << "the bits have no effect on this disk";
  Give(m_tool.Executable(), 65534, 0, 04755);
  const std::string refusal =
      "Plug-ins are not loaded into a set-uid program: remove the set-uid bit of the executable\n";
  ExpectRun({"--resetmcu"}, kBanner + refusal + FailLine("0xD67"), 103);
  ExpectRun({"--sign"}, kBanner + refusal + FailLine("0xD67"), 103);
  EXPECT_THAT(m_tool.TakeCallLines(), testing::IsEmpty());
  Give(m_tool.Executable(), 0, 65534, 02755);
  ExpectSuccess({"--resetmcu"});
}

}  // namespace
