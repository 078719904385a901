// SPDX-License-Identifier: MIT
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "display/commands.h"
#include "display/wide_text.h"

namespace simulator {
namespace {

// The part of the range [address, end) that lies in the bank of `address`.
std::uint32_t PieceLength(std::uint32_t address, std::uint32_t end) {
  return std::min(end - address, kBankBytes - address % kBankBytes);
}

Outcome DumpFileFailure(const std::string& path) {
  return Refuse(Code::kDumpFile, "cannot write " + path + ": " + std::strerror(errno));
}

Outcome CheckRange(const STRUCT_DUMP_FLASH_SETTING& dump) {
  if (dump.ulDumpLen == 0) return Refuse(Code::kIllegalRecord, "the dump is empty");
  if (dump.ulDumpAddr < kFlashBytes && dump.ulDumpLen <= kFlashBytes - dump.ulDumpAddr) {
    return Done();
  }
  return Refuse(Code::kOutsideFlash, Format("0x%X bytes at 0x%X are outside its flash",
                                            dump.ulDumpLen, dump.ulDumpAddr));
}

// Dumps bank by bank, as a display is read: a slow link or a fault strikes at its bank.
Outcome DumpRange(const Display& display, const STRUCT_DUMP_FLASH_SETTING& dump,
                  const std::string& path, const Host& host) {
  const FileHandle file = OpenFile(path, O_WRONLY | O_CREAT | O_TRUNC);
  if (!file.IsOpen()) return DumpFileFailure(path);
  std::string bytes(kBankBytes, '\0');
  const std::uint32_t end = dump.ulDumpAddr + dump.ulDumpLen;
  host.Progress(0, dump.ulDumpLen);
  for (std::uint32_t at = dump.ulDumpAddr; at < end;) {
    Outcome fault = display.GetFaults().Strike(Step::kRead, at / kBankBytes);
    if (!fault.Ok()) return fault;
    bytes.resize(PieceLength(at, end));
    Outcome read =
        display.Read(at, PieceLength(at, end), reinterpret_cast<std::uint8_t*>(&bytes[0]));
    if (!read.Ok()) return read;
    if (!WriteText(file.Get(), bytes)) return DumpFileFailure(path);
    at += PieceLength(at, end);
    host.Progress(at - dump.ulDumpAddr, dump.ulDumpLen);
  }
  return Done();
}

}  // namespace

Outcome DumpToFile(Display& display, const Setting& setting, const Host& host) {
  const auto path = ToUtf8(setting.stDumpFlash.wszDumpFile, kPathCapacity);
  if (!path) return Refuse(Code::kIllegalRecord, "the name of the dump file is no text");
  if (Outcome checked = CheckRange(setting.stDumpFlash); !checked.Ok()) return checked;
  return DumpRange(display, setting.stDumpFlash, *path, host);
}

}  // namespace simulator
