// SPDX-License-Identifier: MIT
#include "line/plugin_check/surroundings.h"

#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace line {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Surroundings, AreTheSameWhenNothingChanges) {
  const Surroundings before;
  EXPECT_THAT(before.Differences(), IsEmpty());
}

TEST(Surroundings, NameEveryDescriptorThatDiffers) {
  const int kept = open("/dev/null", O_RDONLY);
  const Surroundings before;
  const int opened = open("/dev/null", O_RDONLY);
  EXPECT_THAT(before.Differences(),
              ElementsAre("descriptor " + std::to_string(opened) + " is left open"));
  close(opened);
  const int other = open("/dev/zero", O_RDONLY);
  dup2(other, kept);
  close(other);
  EXPECT_THAT(before.Differences(),
              ElementsAre("descriptor " + std::to_string(kept) + " leads to another file"));
  close(kept);
  EXPECT_THAT(before.Differences(),
              ElementsAre("descriptor " + std::to_string(kept) + " of the host is closed"));
}

TEST(Surroundings, NameTheUmaskInOctal) {
  const mode_t mask = umask(022);
  const Surroundings before;
  umask(077);
  EXPECT_THAT(before.Differences(), ElementsAre("the umask is 077 instead of 022"));
  umask(022);
  EXPECT_THAT(before.Differences(), IsEmpty());
  umask(mask);
}

TEST(Surroundings, NameAHandlerThatDiffers) {
  const Surroundings before;
  signal(SIGTERM, SIG_IGN);
  EXPECT_THAT(before.Differences(),
              ElementsAre("the handler is changed for signal 15 (Terminated)"));
  signal(SIGTERM, SIG_DFL);
}

}  // namespace
}  // namespace line
