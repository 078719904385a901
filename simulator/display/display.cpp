// SPDX-License-Identifier: MIT
#include "display/display.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstring>

#include "display/home.h"

namespace simulator {
namespace {

constexpr std::size_t kSettingsLimit = 65536;

Outcome StorageFailure(const std::string& path) {
  return Refuse(Code::kStorage, Format("%s: %s", path.c_str(), std::strerror(errno)));
}

}  // namespace

Outcome Display::Open(unsigned comm_id, std::unique_ptr<Display>& display) {
  if (comm_id > kMaxCommId) {
    return Refuse(Code::kIllegalRecord, Format("there is no display above %u", kMaxCommId));
  }
  const std::string directory = HomeDirectory();
  if (!MakeDirectories(directory)) return StorageFailure(directory);

  const std::string path = DisplayFile(directory, comm_id, "flash");
  FileHandle flash = OpenFile(path, O_RDWR | O_CREAT);
  if (!flash.IsOpen()) return StorageFailure(path);
  if (flock(flash.Get(), LOCK_EX | LOCK_NB) != 0) {
    return errno == EWOULDBLOCK ? Refuse(Code::kBusy, "in use by another run")
                                : StorageFailure(path);
  }

  std::unique_ptr<Display> opened(new Display(directory, comm_id, std::move(flash)));
  Outcome outcome = opened->LoadFiles();
  if (outcome.Ok()) display = std::move(opened);
  return outcome;
}

Outcome Display::Note(const std::string& line) {
  return WriteText(m_journal.Get(), line + "\n") ? Done() : StorageFailure(PathOf("journal"));
}

Outcome Display::EraseBank(std::uint32_t bank) {
  if (Outcome fault = m_faults.Strike(Step::kErase, bank); !fault.Ok()) return fault;
  // Noted first: the cells wear from the moment that the erasure begins.
  if (Outcome noted = Note(Format("erase bank=%u", bank)); !noted.Ok()) return noted;
  if (!m_counters.CountErase(bank)) return StorageFailure(PathOf("counters"));
  return m_flash.EraseBank(bank) ? Done() : StorageFailure(PathOf("flash"));
}

Outcome Display::WriteBank(std::uint32_t bank, const BankBytes& bytes) {
  if (Outcome fault = m_faults.Strike(Step::kWrite, bank); !fault.Ok()) return fault;
  if (Outcome noted = Note(Format("write bank=%u", bank)); !noted.Ok()) return noted;
  if (!m_counters.CountWrite(bank)) return StorageFailure(PathOf("counters"));
  if (!m_flash.ProgramBank(bank, bytes)) return StorageFailure(PathOf("flash"));
  const auto bit = m_faults.FlippedBit(bank);
  return !bit || m_flash.FlipBit(bank, *bit) ? Done() : StorageFailure(PathOf("flash"));
}

Outcome Display::VerifyBank(std::uint32_t bank, const BankBytes& bytes) {
  if (Outcome fault = m_faults.Strike(Step::kVerify, bank); !fault.Ok()) return fault;
  BankBytes stored;
  if (!m_flash.ReadBank(bank, stored)) return StorageFailure(PathOf("flash"));
  const bool same = stored == bytes && !m_faults.VerifyFails(bank);
  if (Outcome noted = Note(Format("verify bank=%u %s", bank, same ? "ok" : "mismatch"));
      !noted.Ok()) {
    return noted;
  }
  if (same) return Done();
  return Refuse(Code::kVerifyMismatch, Format("bank %u differs from what was written", bank));
}

Outcome Display::Read(std::uint32_t address, std::uint32_t length, std::uint8_t* out) const {
  return m_flash.Read(address, length, out) ? Done() : StorageFailure(PathOf("flash"));
}

Outcome Display::ReadKey(std::size_t capacity, std::string& key) const {
  const ReadResult result = ReadSmallFile(PathOf("key"), capacity, key);
  if (result == ReadResult::kRead && !key.empty()) return Done();
  const char* const why =
      result == ReadResult::kFailed ? " cannot be used as a verify key" : " holds no verify key";
  return Refuse(Code::kNoKey, PathOf("key") + why);
}

Outcome Display::SaveState() const {
  const std::string path = PathOf("state");
  return ReplaceFile(path, path + ".new", FormatState(m_state)) ? Done() : StorageFailure(path);
}

std::string Display::PathOf(const char* kind) const {
  return DisplayFile(m_directory, m_comm_id, kind);
}

Outcome Display::LoadFiles() {
  std::string state;
  if (Outcome read = ReadSettingsFile("state", state); !read.Ok()) return read;
  m_state = ParseState(state);
  ++m_state.calls;

  m_journal = OpenFile(PathOf("journal"), O_WRONLY | O_CREAT | O_APPEND);
  if (!m_journal.IsOpen()) return StorageFailure(PathOf("journal"));
  if (!m_counters.Open(PathOf("counters"))) return StorageFailure(PathOf("counters"));
  if (Outcome saved = SaveState(); !saved.Ok()) return saved;
  return LoadSettings();
}

Outcome Display::LoadSettings() {
  std::string identity;
  if (Outcome read = ReadSettingsFile("identity", identity); !read.Ok()) return read;
  if (Outcome parsed = ParseIdentity(identity, m_identity); !parsed.Ok()) return parsed;

  std::string text;
  std::vector<Fault> faults;
  if (Outcome read = ReadSettingsFile("faults", text); !read.Ok()) return read;
  if (Outcome parsed = ParseFaults(text, faults); !parsed.Ok()) return parsed;
  m_faults = Faults(faults, m_state.calls);
  return Done();
}

// A file that is not there is an empty one.
Outcome Display::ReadSettingsFile(const char* kind, std::string& text) const {
  const std::string path = PathOf(kind);
  if (ReadSmallFile(path, kSettingsLimit, text) != ReadResult::kFailed) return Done();
  return Refuse(Code::kSettings, path + " cannot be read");
}

}  // namespace simulator
