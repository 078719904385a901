// SPDX-License-Identifier: MIT
#include "firmware/firmware_search.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "support/files.h"
#include "support/profile_file.h"
#include "support/scratch_dir.h"
#include "support/unprivileged.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

// What a search gave; the name was "unchanged" before.
struct Found {
  int result = -1;
  std::string name = "unchanged";
  std::string output;
};

// A directory with empty files of these names.
class FirmwareDirectory {
 public:
  explicit FirmwareDirectory(const FileNames& names = {}) {
    setenv("LC_ALL", "C.UTF-8", 1);
    for (const std::string& name : names)
      GivenFile(m_directory / name, "");
  }

  std::string Path() const { return m_directory.Path() + "/"; }
  std::string operator/(const std::string& name) const { return m_directory / name; }

  FileNames List(const std::string& ext = ".bin") const {
    FileNames names;
    FindFile(Path(), names, ext);
    return names;
  }

  Found FindByPrefix(const std::string& prefix) const {
    return FindBySettings("[ISP_Fw]\nstrFwPrefix=" + prefix + "\n");
  }
  Found FindBySettings(const std::string& settings) const {
    const std::string file = GivenFile(m_directory / "x.ini", settings);
    wchar_t path[kPathCapacity] = {};
    Found found;
    found.output = Printed(
        [&] { found.result = GetBinNameFromPrefixSetting(Path(), file, path, found.name); });
    return found;
  }

  // The identification file holds these lines.
  Found FindByText(const std::string& lines) const {
    GivenFile(m_directory / "IspUserDefined.txt", "[UserDefinedInfo]\n" + lines);
    Found found;
    found.output =
        Printed([&] { found.result = GetUserDefinedBinNameFromTxt(Path(), found.name); });
    return found;
  }

 private:
  ScratchDir m_directory;
};

void ExpectFound(const Found& found, const std::string& name) {
  EXPECT_EQ(found.result, 1);
  EXPECT_EQ(found.name, name);
  EXPECT_EQ(found.output, "");
}

void ExpectRefused(const Found& found, const std::string& output) {
  EXPECT_EQ(found.result, 0);
  EXPECT_EQ(found.name, "unchanged");
  EXPECT_EQ(found.output, output);
}

FileNames SelectByVersion(const FileNames& candidates, int mode, const std::string& version) {
  auto find_mode = static_cast<ENUM_FIND_BIN_MODE_USE_VER_MODE>(mode);
  FileNames selected;
  EXPECT_EQ(FindBinUseVersionInfo(selected, candidates, find_mode, version), 1);
  return selected;
}

TEST(FindFile, ListsLongerNamesThatEndWithTheExtension) {
  const FirmwareDirectory directory({"a.bin", "A.BIN", ".bin", "bin", "a.bin.txt", "x.bin.bin",
                                     "a.Bin", "\xC3\xBC.bin", "a bin"});
  EXPECT_THAT(directory.List(), UnorderedElementsAre("a.bin", "x.bin.bin", "\xC3\xBC.bin"));
  EXPECT_THAT(directory.List(".txt"), ElementsAre("a.bin.txt"));
}

// The names of a directory as the system lists them, without its two own.
FileNames ListedBySystem(const std::string& directory) {
  FileNames names;
  DIR* const listing = opendir(directory.c_str());
  while (const dirent* const entry = readdir(listing)) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  closedir(listing);
  return names;
}

// Made in this order, the names are sorted neither in the order of making nor backwards.
TEST(FindFile, AppendsInTheOrderOfTheDirectory) {
  const FirmwareDirectory directory({"d.bin", "a.bin", "f.bin", "c.bin", "b.bin", "e.bin"});
  FileNames expected = ListedBySystem(directory.Path());
  ASSERT_EQ(expected.size(), 6u);
  if (std::is_sorted(expected.begin(), expected.end())) GTEST_SKIP() << "this file system sorts";
  expected.insert(expected.begin(), "first");
  FileNames names = {"first"};
  FindFile(directory.Path(), names, ".bin");
  EXPECT_EQ(names, expected);
}

TEST(FindFile, ListsEntriesOfEveryKind) {
  const FirmwareDirectory directory;
  GivenDirectory(directory / "directory.bin");
  ASSERT_EQ(symlink("/no/such/file", (directory / "link.bin").c_str()), 0);
  EXPECT_THAT(directory.List(), UnorderedElementsAre("directory.bin", "link.bin"));
}

TEST(FindFile, NamesNeedNotBeValidText) {
  const FirmwareDirectory directory;
  const std::string name = "\xFF\xC3.bin";
  const int file = open((directory / name).c_str(), O_CREAT | O_WRONLY, 0644);
  if (file < 0) GTEST_SKIP() << "this file system refuses names that are not UTF-8";
  close(file);
  EXPECT_THAT(directory.List(), ElementsAre(name));
  ExpectFound(directory.FindByText("SIName=A\nIgnoreSIName=1\n"), name);
}

TEST(FindFile, AnEmptyTextMeansTheWorkingDirectory) {
  const FirmwareDirectory directory({"here.bin"});
  FileNames names;
  ASSERT_EQ(chdir(directory.Path().c_str()), 0);
  FindFile("", names, ".bin");
  ASSERT_EQ(chdir("/"), 0);
  EXPECT_THAT(names, ElementsAre("here.bin"));
}

TEST(FindFile, WhatCannotBeOpenedHasNoEntries) {
  const FirmwareDirectory directory({"a.bin"});
  SetMode(directory.Path(), 0311);
  EXPECT_EQ(AsOrdinaryUser([&] { return static_cast<int>(directory.List().size()); }), 0);
  FileNames names;
  FindFile(directory / "missing", names, ".bin");
  FindFile(directory / "a.bin", names, ".bin");
  EXPECT_TRUE(names.empty());
}

TEST(PrefixSearch, FindsTheOnlyNameThatBeginsWithThePrefix) {
  const FirmwareDirectory directory({"main.bin", "other.bin", "xmain.bin", "main.txt"});
  ExpectFound(directory.FindByPrefix("main"), "main.bin");
  ExpectFound(directory.FindByPrefix("m"), "main.bin");
  ExpectFound(directory.FindByPrefix("main.bi"), "main.bin");
}

TEST(PrefixSearch, RefusesNoneAndSeveralMatchesAlike) {
  const FirmwareDirectory directory({"ab.bin", "abc.bin", "fw_1.bin", "ab"});
  const struct {
    const char *prefix, *output;
  } kCases[] = {
      {"ab", "find 2 match fw base on prefix ab, fail!\n"},
      {"Fw", "find 0 match fw base on prefix Fw, fail!\n"},
      {"ab.bin", "find 0 match fw base on prefix ab.bin, fail!\n"},
      {"*", "find 0 match fw base on prefix *, fail!\n"},
      {"%s%n", "find 0 match fw base on prefix %s%n, fail!\n"},
      {"\xC3\xBC", "find 0 match fw base on prefix \xC3\xBC, fail!\n"},
  };
  for (const auto& [prefix, output] : kCases) {
    ExpectRefused(directory.FindByPrefix(prefix), output);
  }
}

TEST(PrefixSearch, ThePrefixIsCutTo259Characters) {
  const FirmwareDirectory directory({"a.bin"});
  ExpectRefused(directory.FindByPrefix(std::string(900, 'x')),
                "find 0 match fw base on prefix " + std::string(259, 'x') + ", fail!\n");
}

TEST(PrefixSearch, RefusesADirectoryWithoutFirmware) {
  ExpectRefused(FirmwareDirectory({"a.txt"}).FindByPrefix("a"),
                "Cannot find bin in current dir!\n");
}

TEST(PrefixSearch, RefusesAMissingPrefix) {
  const FirmwareDirectory directory({"a.bin"});
  for (const char* settings : {"", "[ISP_Fw]\nstrFwPrefix=\n", "[ISP_Fw]\n\nstrFwPrefix=a\n",
                               "[Other]\nstrFwPrefix=a\n", "[ISP_Fw]\nstrfwprefix=a\n"}) {
    ExpectRefused(directory.FindBySettings(settings), "Cannot fw prefix setting!\n");
  }
}

TEST(PrefixSearch, ReadsTheExampleFile) {
  const FirmwareDirectory directory({"ACME_M27_1.2.3.bin", "ACME_M32_1.2.3.bin"});
  ExpectFound(directory.FindBySettings(ReadWholeFile(ZVISP_EXAMPLES_DIR "/IspSetting.ini")),
              "ACME_M27_1.2.3.bin");
}

TEST(PrefixSearch, TheSettingsPathStaysWhenALaterStepFails) {
  const FirmwareDirectory directory({"a.bin"});
  wchar_t path[kPathCapacity] = {};
  std::string name;
  Printed([&] { GetBinNameFromPrefixSetting(directory.Path(), "/no/such.ini", path, name); });
  EXPECT_STREQ(path, L"/no/such.ini");
}

TEST(PrefixSearch, TheSettingsPathIsNotTouchedWithoutFirmware) {
  wchar_t path[kPathCapacity] = L"before";
  std::string name;
  Printed([&] { GetBinNameFromPrefixSetting("/no/such/", "/no/such.ini", path, name); });
  EXPECT_STREQ(path, L"before");
}

TEST(UserDefinedSearch, NarrowsByOneTextAfterAnother) {
  const FirmwareDirectory directory(
      {"X_M1_P_1.2.bin", "X_M2_P_1.2.bin", "X_M1_Q_1.2.bin", "Y_M1_P_1.2.bin", "X_M1_P_1.3.bin"});
  ExpectFound(directory.FindByText("SIName=X\nModelName=M1\nPanelName=P\nVersion=1.2\n"),
              "X_M1_P_1.2.bin");
  ExpectFound(directory.FindByText("ModelName=M2\nVersion=1.2\n"), "X_M2_P_1.2.bin");
  ExpectFound(directory.FindByText("IgnoreSIName=1\nSIName=Z\nPanelName=Q\n"), "X_M1_Q_1.2.bin");
}

TEST(UserDefinedSearch, SaysWhichTextSelectsNothing) {
  const FirmwareDirectory directory({"X_M1_P_1.2.bin", "X_M1_P_1.3.bin"});
  const struct {
    const char *lines, *output;
  } kCases[] = {
      {"SIName=x\nModelName=z\n", "cann't find fw use userdefined SI name info!\n"},
      {"ModelName=M2\nPanelName=z\n", "cann't find fw use userdefined model name info!\n"},
      {"PanelName=p\nVersion=9\n", "cann't find fw use userdefined panel name info!\n"},
      {"Version=1.4\n", "cann't find fw use userdefined version name info!\n"},
      {"Version=1.2\nFindBinUseVerMode=-1\n",
       "cann't find fw use userdefined version name info!\n"},
      {"Version=3\nFindBinUseVerMode=1\n", "cann't find fw use userdefined version name info!\n"},
      {"SIName=X\n", "2 bin file find user userdefined info!\n"},
      {"IgnoreVersionName=1\nVersion=9\n", "2 bin file find user userdefined info!\n"},
  };
  for (const auto& [lines, output] : kCases) {
    ExpectRefused(directory.FindByText(lines), output);
  }
}

TEST(UserDefinedSearch, CountsZeroInADirectoryWithoutFirmware) {
  const FirmwareDirectory directory;
  ExpectRefused(directory.FindByText("IgnoreSIName=1\nSIName=A\n"),
                "0 bin file find user userdefined info!\n");
  ExpectRefused(directory.FindByText("SIName=A\n"),
                "cann't find fw use userdefined SI name info!\n");
}

TEST(UserDefinedSearch, WithEveryTextIgnoredTheOnlyFileIsFound) {
  ExpectFound(FirmwareDirectory({"a.bin"}).FindByText("IgnoreSIName=1\nSIName=Z\n"), "a.bin");
}

TEST(UserDefinedSearch, AFailedIdentificationEndsItsLineOfMessages) {
  const FirmwareDirectory directory({"a.bin"});
  ExpectRefused(directory.FindByText(""), "get userdefined info fail!\n");
  ExpectRefused(directory.FindByText("RecordSIMode=1\nSIName=65 x\n"),
                "get userdefined info fail!\n");
  ExpectRefused(directory.FindByText("RecordVersionMode=3\n"),
                "Record version mode setting error!get userdefined info fail!\n");
}

TEST(UserDefinedSearch, ReadsTheExampleFile) {
  const FirmwareDirectory directory({"ACME_M27_1.2.3.bin", "ACME_M27_1.2.4.bin", "M27_1.2.3.bin"});
  GivenFile(directory / "IspUserDefined.txt",
            ReadWholeFile(ZVISP_EXAMPLES_DIR "/IspUserDefined.txt"));
  std::string name;
  EXPECT_EQ(GetUserDefinedBinNameFromTxt(directory.Path(), name), 1);
  EXPECT_EQ(name, "ACME_M27_1.2.3.bin");
}

TEST(VersionSearch, Mode0SelectsNamesThatContainTheVersion) {
  const FileNames names = {"fw_1.2.bin", "fw_1.23.bin", "fw_1-2.bin", "1.2"};
  EXPECT_THAT(SelectByVersion(names, 0, "1.2"), ElementsAre("fw_1.2.bin", "fw_1.23.bin", "1.2"));
  EXPECT_THAT(SelectByVersion(names, 0, "9"), ElementsAre());
}

TEST(VersionSearch, Mode1DropsNamesThatEndInTheMajorNumberAlone) {
  const FileNames names = {"fw_1.bin",   "fw_1.2.3.bin", "fw_2.0.bin", "fw_11.0.bin",
                           "fw_2.1.bin", "1.x_1.bin",    "plain.bin",  "1.binary"};
  const FileNames kept = {"fw_1.2.3.bin", "fw_2.0.bin", "fw_11.0.bin", "1.x_1.bin", "plain.bin"};
  for (const char* version : {"1.2.3", "1 2 3", "  1 2 ", "1."}) {
    EXPECT_EQ(SelectByVersion(names, 1, version), kept) << version;
  }
}

TEST(VersionSearch, Mode1WithoutADotOrABlankSelectsNothing) {
  for (const char* version : {"3", " 3 ", "", "   "}) {
    EXPECT_THAT(SelectByVersion({"fw_3.bin", "fw_4.bin"}, 1, version), ElementsAre()) << version;
  }
}

TEST(VersionSearch, AnyOtherModeSelectsNothing) {
  for (const int mode : {-1, 2, -2147483647}) {
    EXPECT_THAT(SelectByVersion({"fw_1.2.bin"}, mode, "1.2"), ElementsAre()) << mode;
  }
}

TEST(VersionSearch, AppendsToWhatIsThere) {
  auto mode = FIND_BIN_USE_VER_MODE_CONTAINS;
  FileNames selected = {"first"};
  FindBinUseVersionInfo(selected, {"a1"}, mode, "1");
  EXPECT_THAT(selected, ElementsAre("first", "a1"));
}

TEST(FirmwareSearch, AHundredThousandFilesTakeNoNoticeableTime) {
  PreferScratchInMemory();
  const FirmwareDirectory directory;
  for (int i = 0; i < 100000; ++i) {
    close(
        open((directory / ("fw_" + std::to_string(i) + ".bin")).c_str(), O_CREAT | O_WRONLY, 0644));
  }
  const auto start = std::chrono::steady_clock::now();
  ExpectFound(directory.FindByPrefix("fw_99999"), "fw_99999.bin");
  ExpectFound(directory.FindByText("SIName=fw\nModelName=_4711.\n"), "fw_4711.bin");
  ExpectRefused(directory.FindByPrefix("fw_"), "find 100000 match fw base on prefix fw_, fail!\n");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
