// SPDX-License-Identifier: MIT
//
// Every fault, as it shows in a programming run of three banks.
#include <sys/wait.h>
#include <unistd.h>

#include "display/plugin_call.h"
#include "display_fixture.h"

namespace {

class InjectedFaultsTest : public DisplayTest {
 protected:
  InjectedFaultsTest() : m_content(GivenFirmwareAt(0, 3 * 65536)) {}

  std::uint32_t Program() {
    testing::internal::CaptureStdout();
    const int code =
        simulator::CallDisplay("IspFlash", m_setting.get(), m_host, simulator::ProgramFlash);
    m_output = testing::internal::GetCapturedStdout();
    return static_cast<std::uint32_t>(code);
  }

  const std::string m_content;
  std::string m_output;
};

TEST_F(InjectedFaultsTest, AFailureAtACallLeavesTheDisplayAlone) {
  GivenFaults("fail call=2 code=0x4321");
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(Program(), 0x4321u);
  EXPECT_EQ(m_output, "Display 01: injected failure 0x4321\n");
  EXPECT_EQ(Counts(0), "0 1 1");
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(Counts(0), "0 2 2");
}

TEST_F(InjectedFaultsTest, AFailureAtABankLeavesTheBanksFromThereOn) {
  GivenFaults("fail bank=1");
  EXPECT_EQ(Program(), 0x5A2Eu);
  EXPECT_EQ(Flash(), m_content.substr(0, 65536));
  EXPECT_EQ(Counts(1), "1 0 0");
  EXPECT_EQ(Counts(2), "2 0 0");
}

TEST_F(InjectedFaultsTest, AFailureBeforeTheWriteLeavesTheBankErased) {
  GivenFile(FileOf("flash"), std::string(3 * 65536, '\0'));
  GivenFaults("fail bank=1 at=write");
  EXPECT_EQ(Program(), 0x5A2Eu);
  EXPECT_EQ(Flash(),
            m_content.substr(0, 65536) + std::string(65536, '\xFF') + std::string(65536, '\0'));
  EXPECT_EQ(Counts(1), "1 1 0");
}

TEST_F(InjectedFaultsTest, ADisplayThatDoesNotAnswerIsToldApart) {
  GivenFaults("no-answer");
  EXPECT_EQ(Program(), 0x5A29u);
  EXPECT_EQ(m_output, "Display 01: no answer\n");
  EXPECT_EQ(Flash(), "");
}

TEST_F(InjectedFaultsTest, ADisplayThatStopsAnsweringInABankIsToldFromOneThatNeverAnswered) {
  GivenFile(FileOf("flash"), std::string(3 * 65536, '\0'));
  GivenFaults("no-answer bank=1 at=write");
  EXPECT_EQ(Program(), 0x5A30u);
  EXPECT_EQ(m_output, "Display 01: no answer any more at bank 1\n");
  EXPECT_EQ(Flash(),
            m_content.substr(0, 65536) + std::string(65536, '\xFF') + std::string(65536, '\0'));
}

TEST_F(InjectedFaultsTest, ALieReportsSuccessForABankThatHoldsAFlippedBit) {
  GivenFaults("lie bank=1 bit=9");
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(m_output, "Display 01 (simulated): 3 banks programmed and verified\n");
  std::string expected = m_content;
  expected[65537] = static_cast<char>(expected[65537] ^ 2);
  EXPECT_EQ(Flash(), expected);
  EXPECT_NE(Content("journal").find("verify bank=1 lie\n"), std::string::npos);
  EXPECT_NE(Content("journal").find("verify bank=2 ok\nend n=1 code=0x0\n"), std::string::npos);
}

TEST_F(InjectedFaultsTest, AFlippedBitIsFoundByTheVerification) {
  GivenFaults("flip bank=1 bit=9");
  EXPECT_EQ(Program(), 0x5A28u);
  EXPECT_EQ(m_output, "Display 01: bank 1 differs from what was written\n");
  std::string expected = m_content.substr(0, 2 * 65536);
  expected[65537] = static_cast<char>(expected[65537] ^ 2);
  EXPECT_EQ(Flash(), expected);
}

TEST_F(InjectedFaultsTest, AFailedComparisonLeavesTheRightBytes) {
  GivenFaults("verify bank=2");
  EXPECT_EQ(Program(), 0x5A28u);
  EXPECT_EQ(Flash(), m_content);
  EXPECT_NE(Content("journal").find("verify bank=2 mismatch\nend n=1 code=0x5A28\n"),
            std::string::npos);
}

TEST_F(InjectedFaultsTest, ASlowLinkOnlyTakesLonger) {
  GivenFaults("slow ms=1");
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(Flash(), m_content);
}

TEST_F(InjectedFaultsTest, ACrashLeavesADisplayThatTheNextRunCanProgram) {
  GivenFaults("crash bank=2 at=write");
  const pid_t child = fork();
  if (child == 0) _exit(static_cast<int>(Program()));
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT);
  EXPECT_EQ(Counts(2), "2 1 0");
  GivenFaults("");
  EXPECT_EQ(Program(), 0u);
  EXPECT_EQ(Flash(), m_content);
}

TEST_F(InjectedFaultsTest, AnIllegalLineRefusesTheCall) {
  GivenFaults("fail bnak=1");
  EXPECT_EQ(Program(), 0x5A2Du);
  EXPECT_EQ(m_output, "Display 01: line 1 of its faults file is illegal\n");
  EXPECT_EQ(Flash(), "");
}

}  // namespace
