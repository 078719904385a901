// SPDX-License-Identifier: MIT
#include "line/job/sha256.h"

#include <string>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace line {
namespace {

constexpr const char* kOfNothing =
    "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
constexpr const char* kOfAbc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

TEST(Sha256, HasTheKnownAnswers) {
  Sha256 hash;
  EXPECT_EQ(hash.Take(), kOfNothing);
  hash.Add("a", 1);
  hash.Add("bc", 2);
  EXPECT_EQ(hash.Take(), kOfAbc);
  const std::string as(1000000, 'a');
  hash.Add(as.data(), as.size());
  EXPECT_EQ(hash.Take(), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, ReadsOrdinaryFilesAlone) {
  const ScratchDir directory;
  EXPECT_EQ(Sha256OfFile(GivenFile(directory / "abc", "abc")), kOfAbc);
  EXPECT_EQ(Sha256OfFile(GivenFile(directory / "nothing", "")), kOfNothing);
  EXPECT_EQ(Sha256OfFile(directory / "missing"), std::nullopt);
  EXPECT_EQ(Sha256OfFile(directory.Path()), std::nullopt);
  EXPECT_EQ(Sha256OfFile("/dev/null"), std::nullopt);
}

}  // namespace
}  // namespace line
