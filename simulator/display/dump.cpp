// SPDX-License-Identifier: MIT
#include "display/dump.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "display/format.h"
#include "display/wide_text.h"

namespace simulator {
namespace {

// So many bytes are read between two reports of the progress.
constexpr std::uint32_t kPieceBytes = kBankBytes / 4;

// The part of the range [address, end) that lies in the piece of `address`.
std::uint32_t PieceLength(std::uint32_t address, std::uint32_t end) {
  return std::min(end - address, kPieceBytes - address % kPieceBytes);
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

// Opens the file and empties it, but only once it is known to be none of the displays' own.
Outcome OpenDumpFile(const Display& display, const std::string& path, FileHandle& file) {
  file = OpenFile(path, O_WRONLY | O_CREAT);
  struct stat look = {};
  if (!file.IsOpen() || !LookAt(file, look)) return DumpFileFailure(path);
  if (display.IsFileOfADisplay(look)) {
    return Refuse(Code::kDumpFile,
                  "cannot write " + path + ": it is a file of a simulated display");
  }
  // A device cannot be emptied and need not be.
  if (!IsOrdinaryFile(look) || ftruncate(file.Get(), 0) == 0) return Done();
  return DumpFileFailure(path);
}

// A slow link or a fault strikes when a bank is first read.
Outcome StrikeAt(const Display& display, std::uint32_t at, std::uint32_t begin) {
  if (at != begin && at % kBankBytes != 0) return Done();
  return display.GetFaults().Strike(Step::kRead, at / kBankBytes);
}

Outcome DumpRange(const Display& display, const STRUCT_DUMP_FLASH_SETTING& dump,
                  const std::string& path, const Host& host) {
  FileHandle file;
  if (Outcome opened = OpenDumpFile(display, path, file); !opened.Ok()) return opened;
  std::string bytes(kPieceBytes, '\0');
  const std::uint32_t end = dump.ulDumpAddr + dump.ulDumpLen;
  Progress progress(host, dump.ulDumpLen);
  for (std::uint32_t at = dump.ulDumpAddr; at < end;) {
    if (Outcome fault = StrikeAt(display, at, dump.ulDumpAddr); !fault.Ok()) return fault;
    const std::uint32_t length = PieceLength(at, end);
    bytes.resize(length);
    Outcome read = display.Read(at, length, reinterpret_cast<std::uint8_t*>(&bytes[0]));
    if (!read.Ok()) return read;
    if (!WriteText(file.Get(), bytes)) return DumpFileFailure(path);
    at += length;
    progress.Advance(length);
  }
  return Done(Format("%u bytes at 0x%06X read into ", dump.ulDumpLen, dump.ulDumpAddr) + path);
}

}  // namespace

Outcome DumpToFile(Display& display, const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting,
                   const Host& host) {
  const auto path = ToUtf8(setting.stDumpFlash.wszDumpFile, kPathCapacity);
  if (!path) return Refuse(Code::kIllegalRecord, "the name of the dump file is not a text");
  if (Outcome checked = CheckRange(setting.stDumpFlash); !checked.Ok()) return checked;
  return DumpRange(display, setting.stDumpFlash, *path, host);
}

}  // namespace simulator
