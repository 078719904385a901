// SPDX-License-Identifier: MIT
#include "settings/isp_setting.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "base/path.h"
#include "base/string_util.h"
#include "plugin/zeroed.h"
#include "support/profile_file.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

ZeroedPtr<Record> RecordFor(const ProfileFile& file) {
  auto record = MakeZeroed<Record>();
  CopyWideToBuffer(file.WidePath(), kPathCapacity, record->wszSettingFilePath, kPathCapacity);
  return record;
}

void AddBank(Record& record, std::uint32_t target_bank, std::wstring_view path) {
  STRUCT_C_STYLE_MAP_FW& map = record.stMapFw;
  map.ulTargetBank[map.ulCount] = target_bank;
  map.stBank[map.ulCount].ulFileBank = 99;
  CopyWideToBuffer(path, kPathCapacity, map.stBank[map.ulCount].wszPath, kPathCapacity);
  ++map.ulCount;
}

std::wstring Wide(const std::string& text) {
  return CCpTransform().ConvertUTF8StringToUnicode(text);
}

void SaveFirmware(const ProfileFile& file, const std::string& firmware, unsigned int start_bank) {
  SaveFwPathFromFile(Wide(firmware).c_str(), file.WidePath().c_str(), start_bank);
}

TEST(LoadSetting, GivesTheDefaultsWithoutAFileAndPrintsNothing) {
  const ProfileFile file;
  const auto record = RecordFor(file);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(record->LoadSetting(), 0u); }), "");
  EXPECT_EQ(record->enumActionType, 4u);
  EXPECT_EQ(record->enumIspMode, 1u);
  EXPECT_EQ(record->enumCommID, 0u);
  EXPECT_EQ(record->enumDigitalSignatureType, 0u);
  EXPECT_EQ(record->enumSWDigitalSignatureMode, 0u);
  EXPECT_EQ(record->enumBootCodeType, 0u);
  EXPECT_EQ(record->ulProgStartBank, 0u);
}

TEST(LoadSetting, ReadsEachKeyFromItsSection) {
  const ProfileFile file(
      "[Communication]\nenumCommID=2\n[ISP_Action]\nenumActionType=0x10\n"
      "[ISP_DualBank]\nenumDigitalSignatureType=1\nenumSWDigitalSignatureMode=3\n"
      "enumBootCodeType=5\nenumIspMode=2\n[ISP_Fw]\nulProgStartBank=010\n");
  const auto record = RecordFor(file);
  EXPECT_EQ(record->LoadSetting(), 8u);
  EXPECT_EQ(record->enumCommID, 2u);
  EXPECT_EQ(record->enumActionType, 16u);
  EXPECT_EQ(record->enumDigitalSignatureType, 1u);
  EXPECT_EQ(record->enumSWDigitalSignatureMode, 3u);
  EXPECT_EQ(record->enumBootCodeType, 5u);
  EXPECT_EQ(record->enumIspMode, 2u);
  EXPECT_EQ(record->ulProgStartBank, 8u);
}

TEST(LoadSetting, AnEmptyLineBelowAHeaderGivesTheDefaultsOfThatSection) {
  const ProfileFile file(
      "[Communication]\nenumCommID=2\n\n[ISP_DualBank]\n\nenumDigitalSignatureType=1\n"
      "enumSWDigitalSignatureMode=3\nenumBootCodeType=5\nenumIspMode=2\n");
  const auto record = RecordFor(file);
  record->LoadSetting();
  EXPECT_EQ(record->enumCommID, 2u);
  EXPECT_EQ(record->enumDigitalSignatureType, 0u);
  EXPECT_EQ(record->enumSWDigitalSignatureMode, 0u);
  EXPECT_EQ(record->enumBootCodeType, 0u);
  EXPECT_EQ(record->enumIspMode, 1u);
}

TEST(LoadSetting, NumbersAreCutTo32Bits) {
  const ProfileFile file("[ISP_Fw]\nulProgStartBank=-1\n[Communication]\nenumCommID=4294967298\n");
  const auto record = RecordFor(file);
  EXPECT_EQ(record->LoadSetting(), 0xFFFFFFFFu);
  EXPECT_EQ(record->enumCommID, 2u);
}

TEST(LoadSetting, TheFirmwareListIsNotReadBack) {
  const ProfileFile file("[ISP_Fw]\nfwFileCount=1\nfw0_TargetBank=0\nfw0_Path=a.bin\n");
  const auto record = RecordFor(file);
  record->LoadSetting();
  EXPECT_EQ(record->stMapFw.ulCount, 0u);
}

// The example offers the one key that has an effect on a command line.
TEST(LoadSetting, FindsNothingButThePrefixInTheExampleFile) {
  const ProfileFile file(ReadWholeFile(ZVISP_EXAMPLES_DIR "/IspSetting.ini"));
  const auto record = RecordFor(file);
  EXPECT_EQ(record->LoadSetting(), 0u);
  EXPECT_EQ(record->enumCommID, 0u);
  EXPECT_EQ(record->enumActionType, 4u);
  EXPECT_EQ(record->enumIspMode, 1u);
  EXPECT_EQ(file.Read(L"ISP_Fw", L"strFwPrefix"), (ProfileRead{9, L"ACME_M27_"}));
}

TEST(FwPrefix, IsTheTextOfItsKeyAsUtf8) {
  const ProfileFile file("[ISP_Fw]\nstrFwPrefix = ACME \xC3\xBC_ \n");
  EXPECT_EQ(ReadFwPrefix(file.WidePath().c_str()), "ACME \xC3\xBC_");
}

TEST(FwPrefix, IsEmptyWithoutItsKeyAndCutTo259Units) {
  EXPECT_EQ(ReadFwPrefix(ProfileFile().WidePath().c_str()), "");
  EXPECT_EQ(ReadFwPrefix(ProfileFile("[ISP_Fw]\n\nstrFwPrefix=a\n").WidePath().c_str()), "");
  const ProfileFile file("[ISP_Fw]\nstrFwPrefix=" + std::string(300, 'x') + "\n");
  EXPECT_EQ(ReadFwPrefix(file.WidePath().c_str()), std::string(259, 'x'));
}

TEST(SaveSetting, AnEmptyMapWritesTheCountAlone) {
  const ProfileFile file;
  RecordFor(file)->SaveSetting();
  EXPECT_EQ(file.Content(), "[ISP_Fw]\nfwFileCount=0\n");
}

TEST(SaveSetting, TheTargetBankNamesItsKeyAndTheIndexIsTheValue) {
  const ProfileFile file;
  const auto record = RecordFor(file);
  AddBank(*record, 5, L"/fw/a.bin");
  AddBank(*record, 7, L"/fw/\u00FC b.bin");
  record->SaveSetting();
  EXPECT_EQ(file.Content(),
            "[ISP_Fw]\nfwFileCount=2\n"
            "fw5_TargetBank=0\nfw0_FileBank=0\nfw0_Path=/fw/a.bin\n"
            "fw7_TargetBank=1\nfw1_FileBank=1\nfw1_Path=/fw/\xC3\xBC b.bin\n");
}

TEST(SaveSetting, LeavesTheScalarSettingsAndOtherSectionsAsTheyAre) {
  const ProfileFile file("[ISP_Action]\nenumActionType=9\n\n[ISP_Fw]\nulProgStartBank=3\n\n[X]\n");
  const auto record = RecordFor(file);
  AddBank(*record, 0, L"a");
  record->SaveSetting();
  EXPECT_EQ(file.Content(),
            "[ISP_Action]\nenumActionType=9\n\n[ISP_Fw]\nulProgStartBank=3\nfwFileCount=1\n"
            "fw0_TargetBank=0\nfw0_FileBank=0\nfw0_Path=a\n\n[X]\n");
}

TEST(SaveSetting, KeysOfALongerListStay) {
  const ProfileFile file("[ISP_Fw]\nfwFileCount=2\nfw1_Path=old\n");
  const auto record = RecordFor(file);
  AddBank(*record, 0, L"a");
  record->SaveSetting();
  EXPECT_EQ(
      file.Content(),
      "[ISP_Fw]\nfwFileCount=1\nfw1_Path=old\nfw0_TargetBank=0\nfw0_FileBank=0\nfw0_Path=a\n");
}

TEST(SaveSetting, NumbersAreWrittenSigned) {
  const ProfileFile file;
  const auto record = RecordFor(file);
  AddBank(*record, 0xFFFFFFFFu, L"a");
  record->SaveSetting();
  EXPECT_EQ(file.Content(),
            "[ISP_Fw]\nfwFileCount=1\nfw-1_TargetBank=0\nfw0_FileBank=0\nfw0_Path=a\n");
}

TEST(SaveSetting, AFullMapOf256EntriesComesBackKeyByKey) {
  const ProfileFile file;
  const auto record = RecordFor(file);
  for (std::uint32_t i = 0; i < 256; ++i)
    AddBank(*record, 1000 + i, L"/fw/" + std::to_wstring(i) + L".bin");
  record->SaveSetting();
  EXPECT_EQ(file.ReadInt(L"ISP_Fw", L"fwFileCount", -1), 256);
  for (int i = 0; i < 256; ++i) {
    const std::wstring number = std::to_wstring(i);
    const std::wstring target = L"fw" + std::to_wstring(1000 + i) + L"_TargetBank";
    EXPECT_EQ(file.ReadInt(L"ISP_Fw", target.c_str(), -1), i);
    EXPECT_EQ(file.ReadInt(L"ISP_Fw", (L"fw" + number + L"_FileBank").c_str(), -1), i);
    EXPECT_EQ(file.Read(L"ISP_Fw", (L"fw" + number + L"_Path").c_str()).output,
              L"/fw/" + number + L".bin");
  }
}

TEST(SaveSetting, ACountBeyondTheMapWritesOnlyWhatTheMapHolds) {
  const ProfileFile file;
  const auto record = RecordFor(file);
  record->stMapFw.ulCount = 0xFFFFFFFFu;
  record->SaveSetting();
  EXPECT_EQ(file.ReadInt(L"ISP_Fw", L"fwFileCount", 0), -1);
  EXPECT_EQ(file.ReadInt(L"ISP_Fw", L"fw255_FileBank", 0), 255);
  EXPECT_EQ(file.ReadInt(L"ISP_Fw", L"fw256_FileBank", 0), 0);
}

TEST(SaveSetting, EachKeyThatCannotBeWrittenIsReported) {
  const ProfileFile file;
  GivenDirectory(file.Path());
  const auto record = RecordFor(file);
  AddBank(*record, 0, L"a");
  EXPECT_EQ(Printed([&] { record->SaveSetting(); }),
            "Open file error \nOpen file error \nOpen file error \nOpen file error \n");
}

TEST(SaveFwPathFromFile, DescribesEveryBankOfOneFile) {
  const ProfileFile file;
  const std::string fw = GivenSparseFile(file.Directory() + "/fw.bin", 200000);
  SaveFirmware(file, fw, 3);
  EXPECT_EQ(file.Content(),
            "[ISP_Fw]\nfwFileCount=4\n"
            "fw0_TargetBank=3\nfw0_FileBank=0\nfw0_Path=" +
                fw +
                "\n"
                "fw1_TargetBank=4\nfw1_FileBank=1\nfw1_Path=" +
                fw +
                "\n"
                "fw2_TargetBank=5\nfw2_FileBank=2\nfw2_Path=" +
                fw +
                "\n"
                "fw3_TargetBank=6\nfw3_FileBank=3\nfw3_Path=" +
                fw + "\n");
}

TEST(SaveFwPathFromFile, AnEmptyFileHasNoBanks) {
  const ProfileFile file;
  SaveFirmware(file, GivenFile(file.Directory() + "/fw.bin", ""), 3);
  EXPECT_EQ(file.Content(), "[ISP_Fw]\nfwFileCount=0\n");
}

TEST(SaveFwPathFromFile, AMissingFileIsReportedAndNothingWritten) {
  const ProfileFile file;
  const std::string fw = file.Directory() + "/\xC3\xBC.bin";
  EXPECT_EQ(Printed([&] { SaveFirmware(file, fw, 3); }), "File open fail! " + fw + "\n");
  EXPECT_FALSE(FileExists(file.Path()));
}

TEST(GetFwBankCount, CountsAPartialBankAsAWholeOne) {
  const ScratchDir directory;
  const struct {
    std::uint64_t bytes;
    unsigned int banks;
  } kCases[] = {
      // clang-format off
      {0, 0},
      {1, 1},
      {65535, 1},
      {65536, 1},
      {65537, 2},
      {131072, 2},
      {16777217, 257},
      {0x100000001, 65537},
      // clang-format on
  };
  for (const auto& [bytes, expected] : kCases) {
    const std::string path = GivenSparseFile(directory / "\xC3\xBC.bin", bytes);
    unsigned int banks = 77;
    EXPECT_TRUE(GetFwBankCount(Wide(path).c_str(), banks)) << bytes;
    EXPECT_EQ(banks, expected) << bytes;
  }
}

TEST(GetFwBankCount, WhatIsNotAReadableFileIsReportedAndLeavesTheCountAlone) {
  const ScratchDir directory;
  const std::string gone = directory / "gone.bin";
  const std::string is_directory = GivenDirectory(directory / "directory.bin");
  for (const std::string& path : {gone, is_directory, gone + "/x"}) {
    unsigned int banks = 77;
    const std::string output =
        Printed([&] { EXPECT_FALSE(GetFwBankCount(Wide(path).c_str(), banks)); });
    EXPECT_EQ(output, "File open fail! " + path + "\n");
    EXPECT_EQ(banks, 77u);
  }
}

std::wstring DefaultPath() {
  return GetCurrentProcessDir(nullptr).GetString() + std::wstring(L"IspSetting.ini");
}

TEST(SettingFilePath, TheDefaultIsNextToTheExecutable) {
  wchar_t path[kPathCapacity] = {};
  GetDefaultSettingFilePathName(path, kPathCapacity);
  EXPECT_EQ(path, DefaultPath());
}

TEST(SettingFilePath, TheDefaultIsEmptyWhenItsTerminatorDoesNotFit) {
  const auto length = static_cast<unsigned int>(DefaultPath().size());
  for (const unsigned int size : {length + 1, length, length - 1, 1u}) {
    std::wstring output(kPathCapacity, L'x');
    GetDefaultSettingFilePathName(output.data(), size);
    EXPECT_EQ(output.c_str(), size > length ? DefaultPath() : L"") << size;
    EXPECT_EQ(output[size > length ? size : 1], L'x') << size;
  }
  wchar_t untouched = L'x';
  GetDefaultSettingFilePathName(&untouched, 0);
  EXPECT_EQ(untouched, L'x');
}

TEST(SettingFilePath, ANamedFileIsTakenFromTheExecutablesDirectory) {
  setenv("LC_ALL", "C.UTF-8", 1);
  const std::wstring directory = GetCurrentProcessDir(nullptr).GetString();
  const struct {
    std::string named;
    std::wstring expected;
  } kCases[] = {
      {"", directory + L"IspSetting.ini"},
      {"/etc/../x.ini", L"/etc/../x.ini"},
      {"/\xC3\xBC.ini", L"/\u00FC.ini"},
      {"no-such.ini", directory + L"no-such.ini"},
      {"./no-such.ini", directory + L"no-such.ini"},
      {"/\xFF.ini", L""},
  };
  for (const auto& [named, expected] : kCases) {
    wchar_t path[kPathCapacity] = {};
    FillSettingFilePath(named, path);
    EXPECT_EQ(path, expected) << named;
  }
}

TEST(SettingFilePath, ALongPathIsCutAndAShorterOneLeavesNoTailOfIt) {
  wchar_t path[kPathCapacity] = {};
  FillSettingFilePath("/" + std::string(300, 'x'), path);
  EXPECT_EQ(path, L"/" + std::wstring(258, L'x'));
  for (const char* shorter : {"/y", ""}) {
    std::fill(std::begin(path), std::end(path), L'x');
    FillSettingFilePath(shorter, path);
    const std::size_t length = std::wcslen(path);
    EXPECT_EQ(std::count(path + length, std::end(path), L'\0'),
              kPathCapacity - static_cast<int>(length));
  }
}

}  // namespace
