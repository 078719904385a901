// SPDX-License-Identifier: MIT
//
// Where the fields of both records are, in bytes, written out by hand. Nothing here comes from the
// project's structs, so a slip in their layout cannot hide. A field of a sub-record has its offset
// in the whole record.
#ifndef ZVISP_TESTS_SUPPORT_RECORD_OFFSETS_H_
#define ZVISP_TESTS_SUPPORT_RECORD_OFFSETS_H_

#include <cstddef>

// clang-format off
// The command-setting record.
namespace setting_at {
inline constexpr std::size_t enumActionType             = 0;
inline constexpr std::size_t enumDigitalSignatureType   = 4;
inline constexpr std::size_t enumSWDigitalSignatureMode = 8;
inline constexpr std::size_t enumVersionLocationType    = 12;
inline constexpr std::size_t enumUserDefinedVersionType = 16;
inline constexpr std::size_t enumMergeFwInfoType        = 20;
inline constexpr std::size_t enumCommID                 = 24;
inline constexpr std::size_t enumEdpIspMode             = 28;
inline constexpr std::size_t bAutoSlaveAddr             = 32;
inline constexpr std::size_t ucSlaveAddr                = 36;
inline constexpr std::size_t bSearchFw                  = 40;
inline constexpr std::size_t bCompareVer                = 44;
inline constexpr std::size_t bIspChannel                = 48;
inline constexpr std::size_t enumBootCodeType           = 52;
inline constexpr std::size_t enumIspMode                = 56;
inline constexpr std::size_t ulReserved                 = 60;
inline constexpr std::size_t ulProgStartBank            = 64;
inline constexpr std::size_t padding                    = 68;
// stMapFw: the count, 256 target banks of 4 bytes, 256 entries of 1056 bytes.
inline constexpr std::size_t ulCount                    = 72;
inline constexpr std::size_t ulTargetBank               = 76;
inline constexpr std::size_t stBank                     = 1104;
inline constexpr std::size_t ulFileBank                 = 1112;
inline constexpr std::size_t wszPath                    = 1116;
inline constexpr std::size_t kEntryBytes                = 1056;
// stFlagSetting
inline constexpr std::size_t ulFlagLength               = 271440;
inline constexpr std::size_t ucFlagData                 = 271444;
inline constexpr std::size_t ulFlagAddr                 = 272664;
inline constexpr std::size_t ulFlagReserved             = 272668;
// stReadVersionFromFlash
inline constexpr std::size_t enumRecordVerMode          = 272672;
inline constexpr std::size_t ulVerAddr                  = 272676;
inline constexpr std::size_t ulTotalVerLen              = 272680;
inline constexpr std::size_t ulMajorVerLen              = 272684;
inline constexpr std::size_t ulSubVerLen                = 272688;
// stDumpFlash
inline constexpr std::size_t ulDumpAddr                 = 272696;
inline constexpr std::size_t ulDumpLen                  = 272700;
inline constexpr std::size_t wszDumpFile                = 272704;
// stI2CWriteAction
inline constexpr std::size_t ucSlave                    = 273744;
inline constexpr std::size_t ucSubAddr                  = 273745;
inline constexpr std::size_t ucDataLen                  = 273746;
inline constexpr std::size_t ucData                     = 273747;
inline constexpr std::size_t bDdcciCmd                  = 274004;
inline constexpr std::size_t wszSettingFilePath         = 274008;
inline constexpr std::size_t szBootFwPath               = 275048;
// stMergeFwInfo
inline constexpr std::size_t ulMergeLength              = 275308;
inline constexpr std::size_t ucMergeData                = 275312;
inline constexpr std::size_t kRecordBytes               = 275328;
}  // namespace setting_at

// The digital-signature record.
namespace sign_at {
inline constexpr std::size_t enumActionType      = 0;
inline constexpr std::size_t enumSignatureType   = 4;
inline constexpr std::size_t enumSwMode          = 8;
inline constexpr std::size_t enumHwMode          = 12;
inline constexpr std::size_t nKeyPairIndex       = 16;
inline constexpr std::size_t szFwFile            = 20;
inline constexpr std::size_t szSignatureFile     = 280;
inline constexpr std::size_t szKeyPair           = 540;
inline constexpr std::size_t szVerifyKeyFile     = 800;
inline constexpr std::size_t szSignKeyFile       = 1060;
inline constexpr std::size_t szSubCertFile       = 1320;
inline constexpr std::size_t szNextVerifyKeyFile = 1580;
inline constexpr std::size_t kRecordBytes        = 1840;
}  // namespace sign_at
// clang-format on

#endif  // ZVISP_TESTS_SUPPORT_RECORD_OFFSETS_H_
