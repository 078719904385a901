// SPDX-License-Identifier: MIT
#include "display/home.h"

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

namespace {

TEST(Home, TheEnvironmentNamesTheDirectory) {
  setenv("ZVISP_SIM_DIR", "/var/displays", 1);
  EXPECT_EQ(simulator::HomeDirectory(), "/var/displays");
}

TEST(Home, WithoutTheEnvironmentTheDirectoryLiesBesideTheLibrary) {
  unsetenv("ZVISP_SIM_DIR");
  const std::filesystem::path beside = simulator::HomeDirectory();
  EXPECT_EQ(beside.filename(), "displays");
  EXPECT_TRUE(std::filesystem::is_directory(beside.parent_path()));
  setenv("ZVISP_SIM_DIR", "", 1);
  EXPECT_EQ(simulator::HomeDirectory(), beside);
}

TEST(Home, AFileIsNamedByItsDisplayAndKind) {
  EXPECT_EQ(simulator::DisplayFile("/d", 3, "flash"), "/d/display-03.flash");
  EXPECT_EQ(simulator::DisplayFile("/d", 16, "journal"), "/d/display-16.journal");
}

}  // namespace
