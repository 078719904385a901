// SPDX-License-Identifier: MIT
#include "display/faults.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace {

using simulator::Faults;
using simulator::Step;

// The faults of a text as they hold in a call.
Faults FaultsOf(const std::string& text, std::uint32_t call = 1) {
  std::vector<simulator::Fault> faults;
  EXPECT_TRUE(simulator::ParseFaults(text, faults).Ok()) << text;
  return Faults(faults, call);
}

std::uint32_t CodeAt(const Faults& faults, Step step, std::uint32_t bank = 0) {
  return faults.Strike(step, bank).code;
}

template <typename Work>
long MillisecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start)
      .count();
}

TEST(Faults, NoFileMeansNoFault) {
  const Faults faults = FaultsOf("# nothing\n");
  for (const Step step : {Step::kCall, Step::kErase, Step::kWrite, Step::kVerify, Step::kRead})
    EXPECT_TRUE(faults.Strike(step, 0).Ok());
  EXPECT_FALSE(faults.FlippedBit(0));
  EXPECT_FALSE(faults.VerifyFails(0));
  EXPECT_FALSE(faults.VerifyLies(0));
}

TEST(Faults, AFailureEndsTheCallWithItsCode) {
  const auto outcome = FaultsOf("fail code=0x1234").Strike(Step::kCall);
  EXPECT_EQ(outcome.code, 0x1234u);
  EXPECT_EQ(outcome.why, "injected failure 0x1234");
  EXPECT_EQ(CodeAt(FaultsOf("fail"), Step::kCall), 0x5A2Eu);
}

TEST(Faults, ACallFaultStrikesOnlyInThatCall) {
  EXPECT_EQ(CodeAt(FaultsOf("fail call=3", 2), Step::kCall), 0u);
  EXPECT_EQ(CodeAt(FaultsOf("fail call=3", 3), Step::kCall), 0x5A2Eu);
  EXPECT_EQ(CodeAt(FaultsOf("fail call=3", 4), Step::kCall), 0u);
}

TEST(Faults, ABankFaultStrikesWhenTheBankIsFirstTouched) {
  const Faults faults = FaultsOf("fail bank=5");
  EXPECT_EQ(CodeAt(faults, Step::kErase, 5), 0x5A2Eu);
  EXPECT_EQ(CodeAt(faults, Step::kRead, 5), 0x5A2Eu);
  EXPECT_EQ(CodeAt(faults, Step::kErase, 4), 0u);
  EXPECT_EQ(CodeAt(faults, Step::kWrite, 5), 0u);
  EXPECT_EQ(CodeAt(faults, Step::kCall), 0u);
}

TEST(Faults, ANamedStepIsTheOnlyOneStruck) {
  const struct {
    const char* name;
    Step step;
  } kSteps[] = {{"erase", Step::kErase},
                {"write", Step::kWrite},
                {"verify", Step::kVerify},
                {"read", Step::kRead}};
  for (const auto& named : kSteps) {
    const Faults faults = FaultsOf(std::string("fail bank=2 at=") + named.name);
    for (const auto& [name, step] : kSteps)
      EXPECT_EQ(CodeAt(faults, step, 2) != 0, step == named.step) << named.name << name;
  }
}

TEST(Faults, AStepWithoutABankStrikesAtAnyBank) {
  EXPECT_EQ(CodeAt(FaultsOf("fail at=write"), Step::kWrite, 200), 0x5A2Eu);
  EXPECT_EQ(CodeAt(FaultsOf("fail at=write"), Step::kCall), 0u);
}

TEST(Faults, NoAnswerComesAfterItsTime) {
  const Faults faults = FaultsOf("no-answer ms=30");
  EXPECT_GE(MillisecondsOf([&] { EXPECT_EQ(CodeAt(faults, Step::kCall), 0x5A29u); }), 30);
}

TEST(Faults, ASlowLinkTakesItsTimeForEachBankAndGoesOn) {
  const Faults faults = FaultsOf("slow ms=20");
  EXPECT_GE(MillisecondsOf([&] { EXPECT_EQ(CodeAt(faults, Step::kErase, 9), 0u); }), 20);
  EXPECT_GE(MillisecondsOf([&] { EXPECT_EQ(CodeAt(faults, Step::kRead, 9), 0u); }), 20);
  EXPECT_LT(MillisecondsOf([&] { EXPECT_EQ(CodeAt(faults, Step::kWrite, 9), 0u); }), 20);
}

TEST(Faults, AFlippedBitAndAFailedComparisonNameTheirBanks) {
  const Faults faults = FaultsOf("flip bank=1 bit=17\nverify bank=2\n");
  EXPECT_EQ(faults.FlippedBit(1), 17u);
  EXPECT_FALSE(faults.FlippedBit(2));
  EXPECT_TRUE(faults.VerifyFails(2));
  EXPECT_FALSE(faults.VerifyFails(1));
  EXPECT_EQ(FaultsOf("flip").FlippedBit(77), 0u);
}

TEST(Faults, AnAnswerThatFailsToComeAtABankHasACodeOfItsOwn) {
  EXPECT_EQ(CodeAt(FaultsOf("no-answer bank=2"), Step::kErase, 2), 0x5A30u);
  EXPECT_EQ(CodeAt(FaultsOf("no-answer bank=2"), Step::kRead, 2), 0x5A30u);
  for (const char* const at : {"erase", "write", "verify"}) {
    const Faults faults = FaultsOf(std::string("no-answer at=") + at);
    EXPECT_EQ(CodeAt(faults, Step::kCall), 0u) << at;
  }
  const auto outcome = FaultsOf("no-answer at=write").Strike(Step::kWrite, 9);
  EXPECT_EQ(outcome.code, 0x5A30u);
  EXPECT_EQ(outcome.why, "no answer any more at bank 9");
}

TEST(Faults, ALieFlipsABitAndHidesIt) {
  const Faults faults = FaultsOf("lie bank=1 bit=17");
  EXPECT_EQ(faults.FlippedBit(1), 17u);
  EXPECT_FALSE(faults.FlippedBit(0));
  EXPECT_TRUE(faults.VerifyLies(1));
  EXPECT_FALSE(faults.VerifyLies(0));
  EXPECT_FALSE(FaultsOf("flip").VerifyLies(0));
  EXPECT_TRUE(faults.Strike(Step::kVerify, 1).Ok());
}

TEST(Faults, SeveralFaultsStandSideBySide) {
  const Faults faults = FaultsOf("slow ms=1\nfail bank=1 code=0x101\nfail bank=2 code=0x102");
  EXPECT_EQ(CodeAt(faults, Step::kErase, 0), 0u);
  EXPECT_EQ(CodeAt(faults, Step::kErase, 1), 0x101u);
  EXPECT_EQ(CodeAt(faults, Step::kErase, 2), 0x102u);
}

TEST(Faults, ACrashAbortsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT((void)FaultsOf("crash").Strike(Step::kCall), testing::KilledBySignal(SIGABRT), "");
}

TEST(Faults, AHangDoesNotReturn) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto hang = [] {
    std::thread([] {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      _exit(42);
    }).detach();
    (void)FaultsOf("hang").Strike(Step::kCall);
    _exit(1);
  };
  EXPECT_EXIT(hang(), testing::ExitedWithCode(42), "");
}

TEST(Faults, ASlipIsRefusedWithItsLine) {
  for (const char* const slip :
       {"explode", "fail bank", "fail bank=", "fail bank=x", "fail at=lunch", "fail ms=3",
        "slow at=write", "verify code=1", "fail code=0x100", "fail code=0", "flip bit=524288",
        "fail =3", "fail call bank=1", "hang code=1", "fail bank = 3", "no-answer bit=1",
        "lie at=write", "lie bit=524288"}) {
    std::vector<simulator::Fault> faults;
    const auto outcome = simulator::ParseFaults("slow\n" + std::string(slip), faults);
    EXPECT_EQ(outcome.code, 0x5A2Du) << slip;
    EXPECT_EQ(outcome.why, "line 2 of its faults file is illegal") << slip;
  }
}

}  // namespace
