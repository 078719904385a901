// SPDX-License-Identifier: MIT
//
// Every message of the judgement of signing and verifying requests, through the executable. The
// plug-ins are there and must not be called.
#include "support/end_to_end.h"

namespace {

// In a working directory with "a.bin", "a.sig" and "key", and nothing else.
class Validator : public EndToEnd {
 protected:
  Validator() {
    m_tool.WithSignPlugin(TestPlugin("recording_sign"));
    for (const char* name : {"a.bin", "a.sig", "key"}) {
      GivenFile(m_tool / name, name);
    }
  }

  // The message with "@" for the working directory.
  std::string Full(std::string message) const {
    const std::size_t at = message.find('@');
    if (at != std::string::npos) message.replace(at, 1, m_tool / "");
    return message;
  }
};

struct Row {
  Words words;
  const char* message;  // without "Digital signature: " and the newline
};

// clang-format off
const Row kRefused[] = {
  {{"--sign", "--sw", "--dsmode", "1", "--fw", "no.bin"},
   "Tavero digital signature can not support sign function!"},
  {{"--verify", "--hw", "--fw", "no.bin"},
   "Hw digital signature can not support verify function!"},
  {{"--sign", "--sw", "--dsmode", "3", "--fw", "no.bin"},
   "fw file is not exist! @no.bin"},
  {{"--verify", "--sw", "--dsmode", "2", "--fw", "a.bin"},
   "Signature file is missing!"},
  {{"--verify", "--sw", "--dsmode", "2", "--fw", "a.bin", "--signfile", "no.sig"},
   "Signature file is not exist! @no.sig"},
  {{"--verify", "--sw", "--dsmode", "1", "--fw", "a.bin", "--signfile", "a.sig"},
   "Tavero verify key file should not be empty!"},
  {{"--verify", "--sw", "--dsmode", "1", "--fw", "a.bin", "--signfile", "a.sig", "--vkfile", "no"},
   "Tavero verify key file is not exist! @no"},
  {{"--verify", "--sw", "--dsmode", "1", "--fw", "a.bin", "--signfile", "a.sig", "--vkfile", "key"},
   "Tavero subcert file should not be empty!"},
  {{"--verify", "--sw", "--dsmode", "1", "--fw", "a.bin", "--signfile", "a.sig", "--vkfile", "key",
    "--subcert", "no"},
   "Tavero subcert file is not exist! @no"},
  {{"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin", "--keypair", "x"},
   "Zrv internal key pair value is illegal! --keypair x "},
  {{"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin", "--keypair", "5"},
   "Zrv Key Pair out if range! --keypair 5"},
  {{"--sign", "--sw", "--dsmode", "2", "--fw", "a.bin", "--keypair=-1"},
   "Zrv Key Pair out if range! --keypair -1"},
  {{"--sign", "--sw", "--dsmode", "3", "--fw", "a.bin"},
   "Zrv external sign key file should not be empty!"},
  {{"--sign", "--sw", "--dsmode", "3", "--fw", "a.bin", "--skfile", "no"},
   "Zrv external sign key file is not exist! @no"},
  {{"--verify", "--sw", "--dsmode", "3", "--fw", "a.bin", "--signfile", "a.sig"},
   "Zrv external verify key file should not be empty!"},
  {{"--verify", "--sw", "--dsmode", "3", "--fw", "a.bin", "--signfile", "a.sig", "--vkfile", "no"},
   "Zrv external verify key file is not exist! @no"},
  {{"--sign", "--sw", "--dsmode", "4", "--fw", "a.bin", "--skfile", "key"},
   "Zrv external next verify key file should not be empty!"},
  {{"--sign", "--sw", "--dsmode", "4", "--fw", "a.bin", "--skfile", "key", "--nextvkfile", "no"},
   "Zrv external next verify key file is not exist! @no"},
  {{"--sign", "--sw", "--dsmode", "4", "--fw", "a.bin", "--nextvkfile", "key"},
   "Zrv external sign key file should not be empty!"},
  {{"--sign", "--hw", "--dsmode", "1", "--fw", "a.bin", "--skfile", "no"},
   "Zrv hw sign key file is not exist! @no"},
  {{"--sign", "--hw", "--dsmode", "1", "--fw", "a.bin"},
   "Zrv hw next verify key file should not be empty!"},
  {{"--sign", "--hw", "--dsmode", "1", "--fw", "a.bin", "--nextvkfile", "no"},
   "Zrv hw next verify key file is not exist! @no"},
};
// clang-format on

TEST_F(Validator, RefusesEachRequestWithItsMessageBeforeAnyPluginIsCalled) {
  for (const auto& [words, message] : kRefused) {
    ExpectRejected(words, Full("Digital signature: " + std::string(message) + "\n"));
  }
}

TEST_F(Validator, RefusesProgrammingAsItRefusesVerifying) {
  for (const char* action : {"--isp", "--ispuser", "--ispdiff", "--ispcopy"}) {
    ExpectRejected({action, "--sw", "--dsmode", "3", "--fw", "a.bin", "--bank", "0"},
                   "Digital signature: Signature file is missing!\n");
    ExpectRejected(
        {action, "--sw", "--dsmode", "3", "--fw", "a.bin", "--bank", "0", "--signfile", "a.sig"},
        "Digital signature: Zrv external verify key file should not be empty!\n");
  }
}

TEST_F(Validator, OnlyTellsWhatIsMissingWhenTheKeyIsOnTheDevice) {
  ExpectRun({"--isp", "--sw", "--dsmode", "4", "--fw", "a.bin", "--bank", "0"},
            std::string("Digital signature: Signature file is missing!\n") + kBanner +
                "Get Key From Flash ...\n" + kSuccess,
            0);
}

}  // namespace
