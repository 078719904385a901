// SPDX-License-Identifier: MIT
//
// The plug-in as the tool meets it: opened by its path, called through its C exports.
#include <dlfcn.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

#include "display_fixture.h"

namespace {

using Setting = simulator::Setting;

std::vector<int> g_progress;
std::vector<std::wstring> g_messages;

class ExportsTest : public DisplayTest {
 protected:
  ExportsTest() : ExportsTest(ISP_SIMULATOR_FILE) {}
  explicit ExportsTest(const char* file) : m_library(dlopen(file, RTLD_NOW)) {
    EXPECT_NE(m_library, nullptr) << dlerror();
  }
  ~ExportsTest() override { dlclose(m_library); }

  template <typename Function>
  Function* Find(const char* name) const {
    void* const symbol = dlsym(m_library, name);
    EXPECT_NE(symbol, nullptr) << name;
    return reinterpret_cast<Function*>(symbol);
  }
  std::uint32_t Call(const char* name) {
    testing::internal::CaptureStdout();
    const int code = Find<int(Setting*)>(name)(m_setting.get());
    m_output = testing::internal::GetCapturedStdout();
    return static_cast<std::uint32_t>(code);
  }
  // Starts a run in a process of its own, as an operator's second terminal does.
  pid_t StartProgramming() {
    const pid_t child = fork();
    if (child == 0) _exit(Find<int(Setting*)>("IspFlash")(m_setting.get()) == 0 ? 0 : 1);
    return child;
  }
  void WaitForJournal(const std::string& line) const {
    for (int i = 0; i < 1000; ++i) {
      if (FileExists(FileOf("journal")) && Content("journal").find(line) != std::string::npos)
        return;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    FAIL() << "the run never came to: " << line;
  }
  static void Kill(pid_t child) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }

  void* m_library;
  std::string m_output;
};

TEST_F(ExportsTest, EveryDocumentedCallIsThereAndNoOther) {
  for (const char* const name :
       {"IspFlash", "SetCommInterface", "RecordFWVersion", "GetKeyFromFlash", "SetUIFunction",
        "DumpFlash", "GetUserDefinedInfoFromDDCCI", "IspEeprom", "EnterISPModeExport",
        "ResetMCUExport", "GetScalerType"})
    EXPECT_NE(dlsym(m_library, name), nullptr) << name;
  for (const char* const name : {"SetIDev", "GetFWInfo", "SendUserDefinedInfo", "ChipEraseFlash",
                                 "GetMergeFwInfo", "SetMergeFwInfo", "I2CWriteExport"})
    EXPECT_EQ(dlsym(m_library, name), nullptr) << name;
}

TEST_F(ExportsTest, ARunProgramsAndDumpsTheDisplay) {
  const std::string content = GivenFirmwareAt(0, 5 * 65536);
  EXPECT_EQ(Call("IspFlash"), 0u);
  m_setting->enumActionType = 16;
  m_setting->stDumpFlash.ulDumpLen = 5 * 65536;
  CopyText(m_setting->stDumpFlash.wszDumpFile, m_scratch / "dump.bin");
  EXPECT_EQ(Call("DumpFlash"), 0u);
  EXPECT_EQ(ReadWholeFile(m_scratch / "dump.bin"), content);
}

TEST_F(ExportsTest, TheJournalTellsTheWholeCall) {
  GivenFirmwareAt(7, 1);
  m_setting->bAutoSlaveAddr = 0;
  m_setting->ucSlaveAddr = 0x94;
  m_setting->enumIspMode = 1;
  EXPECT_EQ(Call("IspFlash"), 0u);
  m_setting->enumActionType = 20;
  m_setting->bAutoSlaveAddr = 1;
  EXPECT_EQ(Call("IspEeprom"), 0x5A21u);
  EXPECT_EQ(Content("journal"),
            "call n=1 name=IspFlash action=4 comm=1 slave=0x94 isp_mode=1 banks=1\n"
            "erase bank=7\nwrite bank=7\nverify bank=7 ok\n"
            "end n=1 code=0x0\n"
            "call n=2 name=IspEeprom action=20 comm=1 slave=auto isp_mode=1 banks=1 edp_mode=0\n"
            "end n=2 code=0x5A21\n");
}

TEST_F(ExportsTest, EachOptionalCallReachesItsDisplay) {
  EXPECT_EQ(Call("RecordFWVersion"), 0u);
  EXPECT_EQ(Call("EnterISPModeExport"), 0u);
  EXPECT_EQ(Call("ResetMCUExport"), 0u);
  EXPECT_EQ(Call("GetScalerType"), 1u);
  EXPECT_EQ(Call("GetUserDefinedInfoFromDDCCI"), 0u);
  EXPECT_EQ(m_output, "Display 01 (simulated): User-defined information: simulated display\n");
  m_setting->enumEdpIspMode = 2;
  EXPECT_EQ(Call("IspEeprom"), 0u);
  EXPECT_EQ(m_output, "Display 01 (simulated): e-DP EEPROM version: 0\n");
  EXPECT_EQ(Content("state"),
            "calls = 6\nresets = 1\neeprom_version = 0\nmode = normal\n"
            "recorded_version = display 1.0\n");
}

TEST_F(ExportsTest, TheKeyFillsTheBufferWithZerosBehindIt) {
  auto* const get_key = Find<int(Setting*, unsigned char*)>("GetKeyFromFlash");
  std::vector<unsigned char> buffer(1221, 0xEE);
  EXPECT_EQ(get_key(m_setting.get(), buffer.data()), 0x5A2A);
  GivenFile(FileOf("key"), "the key");
  EXPECT_EQ(get_key(m_setting.get(), buffer.data()), 0);
  EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + 1220),
            "the key" + std::string(1213, '\0'));
  EXPECT_EQ(buffer[1220], 0xEE);
  GivenFile(FileOf("key"), std::string(1220, 'k'));
  EXPECT_EQ(get_key(m_setting.get(), buffer.data()), 0);
  EXPECT_EQ(buffer[1219], 'k');
  GivenFile(FileOf("key"), std::string(1221, 'k'));
  EXPECT_EQ(get_key(m_setting.get(), buffer.data()), 0x5A2A);
}

TEST_F(ExportsTest, TheHostsCallbacksAreCalled) {
  g_progress.clear();
  g_messages.clear();
  Find<void(ZvReturnProgress, ZvShowMessage, ZvGetHubDevice)>("SetUIFunction")(
      [](int percent) { g_progress.push_back(percent); },
      [](wchar_t* text) { g_messages.emplace_back(text); }, nullptr);
  Find<void(CZvComm*)>("SetCommInterface")(nullptr);
  GivenFirmwareAt(0, 2 * 65536);
  EXPECT_EQ(Call("IspFlash"), 0u);
  EXPECT_EQ(g_progress, (std::vector<int>{0, 16, 33, 50, 66, 83, 100}));
  m_setting->stMapFw.ulCount = 0;
  EXPECT_EQ(Call("IspFlash"), 0x5A2Cu);
  EXPECT_EQ(g_messages, (std::vector<std::wstring>{
                            L"Display 01 (simulated): 2 banks programmed and verified",
                            L"Display 01: the firmware map is empty, nothing to program"}));
  EXPECT_EQ(m_output, "");
}

TEST_F(ExportsTest, AHostileRecordIsRefused) {
  EXPECT_EQ(Find<int(Setting*)>("IspFlash")(nullptr), 0x5A22);
  EXPECT_EQ(Find<int(Setting*, unsigned char*)>("GetKeyFromFlash")(m_setting.get(), nullptr),
            0x5A22);
  std::memset(static_cast<void*>(m_setting.get()), 0xFF, sizeof(Setting));
  for (const std::uint32_t comm_id : {1u, 17u, 0xFFFFFFFFu}) {
    for (const char* const name : {"IspFlash", "DumpFlash", "RecordFWVersion", "IspEeprom"}) {
      for (std::uint32_t action = 0; action < 26; ++action) {
        m_setting->enumCommID = comm_id;
        m_setting->enumActionType = action;
        const bool display_answers = comm_id == 1 && std::string(name) == "RecordFWVersion";
        EXPECT_EQ(Call(name) == 0, display_answers) << name << action;
      }
    }
  }
}

TEST_F(ExportsTest, EveryCommunicationNumberIsADisplayOfItsOwn) {
  for (std::uint32_t comm_id = 0; comm_id <= 16; ++comm_id) {
    m_setting->enumCommID = comm_id;
    m_setting->stMapFw.ulCount = 0;
    GivenEntry(0, 0, GivenFile(m_scratch / "fw", std::string(1, static_cast<char>(comm_id))));
    ASSERT_EQ(Call("IspFlash"), 0u);
  }
  EXPECT_EQ(ReadWholeFile(m_scratch / "display-00.flash")[0], 0);
  EXPECT_EQ(ReadWholeFile(m_scratch / "display-09.flash")[0], 9);
  EXPECT_EQ(ReadWholeFile(m_scratch / "display-16.flash")[0], 16);
}

TEST_F(ExportsTest, WithoutTheEnvironmentTheFilesLieBesideThePlugIn) {
  const std::string plugin = m_scratch / "libIsp.dylib";
  std::filesystem::copy_file(ISP_SIMULATOR_FILE, plugin);
  unsetenv("ZVISP_SIM_DIR");
  void* const library = dlopen(plugin.c_str(), RTLD_NOW);
  ASSERT_NE(library, nullptr) << dlerror();
  const auto reset = reinterpret_cast<int (*)(Setting*)>(dlsym(library, "ResetMCUExport"));
  EXPECT_EQ(reset(m_setting.get()), 0);
  EXPECT_TRUE(FileExists(m_scratch / "displays/display-01.state"));
  dlclose(library);
}

TEST_F(ExportsTest, ASecondRunOnTheSameDisplayIsToldAtOnceAndChangesNothing) {
  const std::string content = GivenFirmwareAt(0, 3 * 65536);
  GivenFaults("hang bank=1 at=write");
  const pid_t first = StartProgramming();
  WaitForJournal("erase bank=1");
  GivenFaults("");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Call("IspFlash"), 0x5A26u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_EQ(m_output, "Display 01: in use by another run\n");
  EXPECT_EQ(Counts(0), "0 1 1");
  m_setting->enumCommID = 2;
  EXPECT_EQ(Call("IspFlash"), 0u);
  Kill(first);
}

TEST_F(ExportsTest, AKilledRunLeavesADisplayThatTheNextRunCanProgram) {
  const std::string content = GivenFirmwareAt(0, 3 * 65536);
  for (const char* const step : {"erase", "write", "verify"}) {
    GivenFaults("hang bank=1 at=" + std::string(step));
    std::filesystem::remove(FileOf("journal"));
    const pid_t run = StartProgramming();
    WaitForJournal("verify bank=0 ok");
    Kill(run);
    GivenFaults("");
    EXPECT_EQ(Call("IspFlash"), 0u) << step << m_output;
    EXPECT_EQ(Flash(), content);
  }
}

TEST_F(ExportsTest, ARunKilledAtAnyMomentCanBeRepeated) {
  const std::string content = GivenFirmwareAt(0, 16 * 65536);
  for (int delay = 0; delay < 30; ++delay) {
    const pid_t run = StartProgramming();
    std::this_thread::sleep_for(std::chrono::microseconds(200 * delay));
    Kill(run);
    EXPECT_EQ(Call("IspFlash"), 0u) << m_output;
    ASSERT_EQ(Flash(), content) << delay;
  }
}

// The journal is what tests of other programs trust: whatever moment a run is killed at, it names
// every bank that was touched, in whole lines.
TEST_F(ExportsTest, TheJournalIsTheRefereeOfARunKilledAtAnyMoment) {
  const std::string content = GivenFirmwareAt(0, 8 * 65536);
  for (int delay = 0; delay < 40; ++delay) {
    for (const char* const kind : {"flash", "journal", "counters"}) {
      std::filesystem::remove(FileOf(kind));
    }
    GivenFile(FileOf("flash"), std::string(8 * 65536, '\0'));
    const pid_t run = StartProgramming();
    std::this_thread::sleep_for(std::chrono::microseconds(100 * delay));
    Kill(run);
    const std::string journal = FileExists(FileOf("journal")) ? Content("journal") : "";
    EXPECT_TRUE(journal.empty() || journal.back() == '\n');
    const std::string flash = Flash();
    for (std::uint32_t bank = 0; bank < 8; ++bank) {
      const auto has = [&](const std::string& line) {
        return journal.find(line + std::to_string(bank)) != std::string::npos;
      };
      const std::string stored = flash.substr(bank * 65536, 65536);
      const bool untouched = stored == std::string(65536, '\0');
      const bool programmed = stored == content.substr(bank * 65536, 65536);
      EXPECT_TRUE(has("erase bank=") || untouched) << bank;
      EXPECT_TRUE(has("write bank=") || !programmed) << bank;
      EXPECT_TRUE(!has("verify bank=") || programmed) << bank;
    }
    EXPECT_TRUE(journal.find("\nend n=") == std::string::npos || flash == content);
  }
}

TEST_F(ExportsTest, RunsThatCompeteEitherProgramOrAreRefused) {
  const std::string content = GivenFirmwareAt(0, 4 * 65536);
  std::vector<pid_t> runs;
  for (int i = 0; i < 8; ++i)
    runs.push_back(StartProgramming());
  unsigned programmed = 0;
  for (const pid_t run : runs) {
    int status = -1;
    waitpid(run, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    programmed += WEXITSTATUS(status) == 0 ? 1 : 0;
  }
  EXPECT_GE(programmed, 1u);
  EXPECT_EQ(Flash(), content);
  const std::string times = std::to_string(programmed);
  EXPECT_EQ(Counts(3), "3 " + times + " " + times);
}

}  // namespace
