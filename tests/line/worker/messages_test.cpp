// SPDX-License-Identifier: MIT
#include "line/worker/messages.h"

#include <cstdlib>
#include <cstring>

#include "plugin/fresh_setting.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace line {
namespace {

template <typename Message>
std::optional<Message> SentAndReceived(const Message& message) {
  std::string bytes = Encode(message);
  bool broken = false;
  const std::optional<Frame> frame = TakeFrame(bytes, broken);
  EXPECT_TRUE(frame && bytes.empty() && !broken);
  return Decode<Message>(*frame);
}

TEST(Messages, ArriveAsTheyWereSent) {
  GoMessage go;
  go.setting = std::string("\0a\xFF", 3);
  go.unit = "ZP00000001";
  go.comm = 16;
  go.has_expected = true;
  go.expected = 3;
  go.nothing_written = {0x5A26, 0};
  const auto received = SentAndReceived(go);
  ASSERT_TRUE(received);
  EXPECT_EQ(received->setting, go.setting);
  EXPECT_EQ(received->unit, "ZP00000001");
  EXPECT_EQ(received->comm, 16u);
  EXPECT_TRUE(received->has_expected);
  EXPECT_FALSE(received->reads_back);
  EXPECT_EQ(received->expected, 3u);
  EXPECT_EQ(received->nothing_written, (std::vector<std::uint32_t>{0x5A26, 0}));
  EXPECT_EQ(SentAndReceived(ResultMessage{0xFFFFFF00})->code, 0xFFFFFF00u);
  EXPECT_EQ(SentAndReceived(ProgressMessage{-1})->percent, -1);
  const std::vector<std::string> words = {"--isp", "", "--fw", "a file"};
  EXPECT_EQ(SentAndReceived(WordsMessage{words})->words, words);
}

TEST(Messages, AFrameIsTakenWhenItIsWhole) {
  const std::string whole = Encode(CallMessage{"IspFlash"});
  bool broken = false;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    std::string part = whole.substr(0, length);
    EXPECT_FALSE(TakeFrame(part, broken)) << length;
    EXPECT_FALSE(broken);
    EXPECT_EQ(part.size(), length);
  }
}

TEST(Messages, ALengthThatNoFrameHasBreaksTheLink) {
  std::string bytes(kFrameHeader, '\xFF');
  bool broken = false;
  EXPECT_FALSE(TakeFrame(bytes, broken));
  EXPECT_TRUE(broken);
}

TEST(Messages, AShortOrALongPayloadIsNoMessage) {
  Frame frame = {MessageType::kCall, std::string("\x08\0\0\0IspFlas", 11)};
  EXPECT_FALSE(Decode<CallMessage>(frame));
  frame.payload += "h";
  EXPECT_TRUE(Decode<CallMessage>(frame));
  frame.payload += "!";
  EXPECT_FALSE(Decode<CallMessage>(frame));
  EXPECT_FALSE(Decode<ResultMessage>(frame));
}

TEST(Messages, ARecordTravelsWithEveryByteOfItsUsedEntries) {
  const auto setting = MakeFreshSetting();
  setting->stMapFw.ulCount = 2;
  std::memset(static_cast<void*>(&setting->stMapFw.stBank[0]), 0x5A, 2 * 1056);
  setting->stMapFw.ulTargetBank[255] = 7;
  setting->stMergeFwInfo.ulLength = 16;
  const std::string packed = PackSetting(*setting);
  EXPECT_EQ(packed.size(), 275328u - 254 * 1056);
  const auto copy = ZeroedPtr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>(
      static_cast<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING*>(std::calloc(1, 275328)));
  ASSERT_TRUE(UnpackSetting(packed, *copy));
  EXPECT_EQ(std::memcmp(copy.get(), setting.get(), 275328), 0);
}

TEST(Messages, BytesThatAreNoRecordAreRefused) {
  const auto setting = MakeFreshSetting();
  std::string packed = PackSetting(*setting);
  EXPECT_FALSE(UnpackSetting(packed.substr(1), *MakeFreshSetting()));
  EXPECT_FALSE(UnpackSetting(packed + "x", *MakeFreshSetting()));
  EXPECT_FALSE(UnpackSetting("", *MakeFreshSetting()));
  packed[72] = 1;  // one bank entry that does not follow
  EXPECT_FALSE(UnpackSetting(packed, *MakeFreshSetting()));
}

TEST(Messages, TheVerdictTravelsWithWhatWasTyped) {
  JudgedWords words;
  words.accepted = true;
  words.args.strComm = "3";
  words.args.strWriteData = "last";
  words.args.ulActionBits = 8;
  words.args.nEdpIspMode = 2;
  words.slots[1].ulBank = 5;
  words.slots[1].strFwPath = L"gr\u00FCn.bin";
  words.setting = MakeFreshSetting();
  words.setting->enumActionType = 4;
  words.sign_args = MakeZeroed<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS>();
  words.sign_args->szFwFile[0] = 'f';
  std::string bytes = EncodeJudged(words);
  bool broken = false;
  const auto received = DecodeJudged(*TakeFrame(bytes, broken));
  ASSERT_TRUE(received);
  EXPECT_TRUE(received->accepted);
  EXPECT_EQ(received->args.strComm, "3");
  EXPECT_EQ(received->args.strWriteData, "last");
  EXPECT_EQ(received->args.ulActionBits, 8u);
  EXPECT_EQ(received->args.nEdpIspMode, 2);
  ASSERT_EQ(received->slots.size(), 1u);
  EXPECT_EQ(received->slots.at(1).ulBank, 5u);
  EXPECT_EQ(received->slots.at(1).strFwPath.GetUtf8String(), "gr\u00FCn.bin");
  EXPECT_EQ(received->setting->enumActionType, 4u);
  EXPECT_EQ(received->sign_args->szFwFile[0], 'f');
}

}  // namespace
}  // namespace line
