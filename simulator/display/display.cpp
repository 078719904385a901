// SPDX-License-Identifier: MIT
#include "display/display.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstring>

#include "display/format.h"
#include "display/home.h"

namespace simulator {
namespace {

// Far more than an operator writes. A larger file is something else under this name.
constexpr std::size_t kSettingsLimit = 65536;

// Every kind of file that a display has. A dump onto any of them is refused (IsFileOfADisplay).
constexpr const char* kKinds[] = {"flash",    "journal", "counters", "state",
                                  "identity", "key",     "faults"};

Outcome StorageFailure(const std::string& path) {
  if (errno == ELOOP) {
    return Refuse(Code::kStorage, path + " is a symbolic link, which a display does not follow");
  }
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
  FileHandle flash = OpenWithoutLink(path, O_RDWR | O_CREAT);
  if (!flash.IsOpen()) return StorageFailure(path);
  // The flash file is the lock, because every call opens it. The file handle keeps the lock, so it
  // ends with the display or with the process.
  if (flock(flash.Get(), LOCK_EX | LOCK_NB) != 0) {
    return errno == EWOULDBLOCK ? Refuse(Code::kBusy, "in use by another run")
                                : StorageFailure(path);
  }

  std::unique_ptr<Display> opened(new Display(directory, comm_id, std::move(flash)));
  // Files are loaded under the lock: another run may have changed them until now.
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
  // As above: a line too many is harmless, a missing one would hide a change.
  if (Outcome noted = Note(Format("write bank=%u", bank)); !noted.Ok()) return noted;
  if (!m_counters.CountWrite(bank)) return StorageFailure(PathOf("counters"));
  if (!m_flash.ProgramBank(bank, bytes)) return StorageFailure(PathOf("flash"));
  // After the bank was written, as a cell that loses its charge does.
  const auto bit = m_faults.FlippedBit(bank);
  return !bit || m_flash.FlipBit(bank, *bit) ? Done() : StorageFailure(PathOf("flash"));
}

Outcome Display::VerifyBank(std::uint32_t bank, const BankBytes& bytes) {
  if (Outcome fault = m_faults.Strike(Step::kVerify, bank); !fault.Ok()) return fault;
  BankBytes stored;
  if (!m_flash.ReadBank(bank, stored)) return StorageFailure(PathOf("flash"));
  const bool same = stored == bytes && !m_faults.VerifyFails(bank);
  // `verify` makes a good bank fail. `lie` makes a bad one pass.
  const bool lie = !same && m_faults.VerifyLies(bank);
  // The journal tells the truth even when the display does not.
  const char* const verdict = same ? "ok" : (lie ? "lie" : "mismatch");
  if (Outcome noted = Note(Format("verify bank=%u %s", bank, verdict)); !noted.Ok()) return noted;
  if (same || lie) return Done();
  return Refuse(Code::kVerifyMismatch, Format("bank %u differs from what was written", bank));
}

Outcome Display::Read(std::uint32_t address, std::uint32_t length, std::uint8_t* out) const {
  return m_flash.Read(address, length, out) ? Done() : StorageFailure(PathOf("flash"));
}

Outcome Display::ReadKey(std::size_t capacity, std::string& key) const {
  const ReadResult result = ReadSmallFile(PathOf("key"), capacity, key);
  if (result == ReadResult::kRead && !key.empty()) return Done();
  // ReadSmallFile fails for a file that is too long as well as for one that cannot be opened.
  const char* const why =
      result == ReadResult::kFailed ? " cannot be used as a verify key" : " holds no verify key";
  return Refuse(Code::kNoKey, PathOf("key") + why);
}

Outcome Display::SaveState() const {
  const std::string path = PathOf("state");
  return ReplaceFile(path, path + ".new", FormatState(m_state)) ? Done() : StorageFailure(path);
}

bool Display::IsFileOfADisplay(const struct stat& look) const {
  // All displays, not this one alone: their files are in the same directory.
  for (unsigned comm_id = 0; comm_id <= kMaxCommId; ++comm_id) {
    for (const char* const kind : kKinds) {
      if (IsFileAt(DisplayFile(m_directory, comm_id, kind), look)) return true;
    }
  }
  return false;
}

std::string Display::PathOf(const char* kind) const {
  return DisplayFile(m_directory, m_comm_id, kind);
}

Outcome Display::LoadFiles() {
  LoadState();
  if (Outcome opened = OpenJournal(); !opened.Ok()) return opened;
  if (!m_counters.Open(PathOf("counters"))) return StorageFailure(PathOf("counters"));
  // Saved at once, so that a run that is killed later has still counted its call. Faults are chosen
  // by this count.
  if (Outcome saved = SaveState(); !saved.Ok()) return saved;
  return LoadSettings();
}

// A state that cannot be read must not lock an operator out of the display.
void Display::LoadState() {
  std::string text;
  if (ReadSmallFile(PathOf("state"), kSettingsLimit, text) == ReadResult::kFailed) {
    text.clear();
    m_warning = PathOf("state") + " cannot be read, the display counts as new";
  }
  m_state = ParseState(text);
  ++m_state.calls;
}

// A line that a full disk cut short is ended, so that the next one stays whole.
Outcome Display::OpenJournal() {
  m_journal = OpenWithoutLink(PathOf("journal"), O_RDWR | O_CREAT | O_APPEND);
  struct stat look = {};
  if (!m_journal.IsOpen() || !LookAt(m_journal, look)) return StorageFailure(PathOf("journal"));
  char last = '\n';
  if (look.st_size > 0 && ReadAt(m_journal.Get(), &last, 1, look.st_size - 1) < 0) {
    return StorageFailure(PathOf("journal"));
  }
  return last == '\n' || WriteText(m_journal.Get(), "\n") ? Done()
                                                          : StorageFailure(PathOf("journal"));
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
