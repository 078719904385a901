// SPDX-License-Identifier: MIT
#include "line/journal/history.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "line/event/event_json.h"
#include "line/journal/record_file.h"
#include "line/journal/record_reader.h"

namespace line {

namespace {

// Stored in the index: never renumber.
enum class Kind : std::uint64_t {
  kFormat = 1,
  kCovered = 2,
  kStarted = 3,
  kPassed = 4,
  kEnded = 5
};

// What the numbers are: hashes of the unit, of the job's name and of the run; for kCovered, the
// hash of a record file's name and how many of its bytes are in the index.
struct Entry {
  Kind kind;
  std::uint64_t first;
  std::uint64_t second;
  std::uint64_t third;
};
static_assert(sizeof(Entry) == 32, "the index is read as it was written");

// The first entry of every index: "ZVISPLIX" as a number, and the version of the format.
constexpr Entry kFormat = {Kind::kFormat, 0x5A564953504C4958, 2, 0};

// FNV-1a. It stays the same on every host and in every version, unlike std::hash.
std::uint64_t HashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char character : text) {
    hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3;
  }
  return hash;
}

std::optional<Entry> EntryOf(std::string_view text) {
  const std::string_view type = text.empty() ? std::string_view() : TypeOfLine(text);
  if (type != "unit_start" && type != "unit_result") return std::nullopt;
  const std::optional<RecordedEvent> event = FromJsonLine(text);
  if (!event.has_value()) return std::nullopt;
  const Kind kind = type == "unit_start"                 ? Kind::kStarted
                    : event->outcome == Outcome::kPassed ? Kind::kPassed
                                                         : Kind::kEnded;
  return Entry{kind, HashOf(event->where.unit), HashOf(event->where.job_name),
               HashOf(event->where.run)};
}

struct RecordFile {
  std::string path;
  std::uint64_t hash;   // of its name
  std::uint64_t bytes;  // at this moment
};

std::vector<RecordFile> FilesOf(const std::string& data_directory) {
  std::vector<RecordFile> files;
  for (const std::string& name : RecordFileNames(data_directory)) {
    const std::string path = RecordDirectory(data_directory) + "/" + name;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) continue;
    files.push_back({path, HashOf(name), static_cast<std::uint64_t>(status.st_size)});
  }
  return files;
}

// What is known of one unit, and the runs of it that were started and have not ended.
struct KnownUnit {
  UnitHistory history;
  std::vector<std::uint64_t> open_runs;
};

class Index {
 public:
  Index(std::string data_directory, const std::vector<std::string>& units,
        const std::string& job_name)
      : m_data_directory(std::move(data_directory)),
        m_files(FilesOf(m_data_directory)),
        m_job(HashOf(job_name)),
        m_any_job(job_name.empty()) {
    for (const std::string& unit : units) {
      m_units[HashOf(unit)];
    }
  }

  void Ask();
  UnitHistory HistoryOf(const std::string& unit) const { return m_units.at(HashOf(unit)).history; }

 private:
  bool ReadIndex(std::string_view bytes);
  void Count(const Entry& entry);
  std::vector<Entry> ReadWhatIsNew();
  bool FitsTheRecord() const;

  std::string m_data_directory;
  std::vector<RecordFile> m_files;
  std::uint64_t m_job;
  bool m_any_job;
  std::map<std::uint64_t, std::uint64_t> m_covered;  // by hash of the file's name: bytes
  std::unordered_map<std::uint64_t, KnownUnit> m_units;
};

void Index::Count(const Entry& entry) {
  if (entry.kind == Kind::kCovered) {
    m_covered[entry.first] = entry.second;
    return;
  }
  const auto found = m_units.find(entry.first);
  if (found == m_units.end() || (!m_any_job && entry.second != m_job)) return;
  KnownUnit& unit = found->second;
  if (entry.kind == Kind::kStarted) {
    ++unit.history.attempts;
    unit.open_runs.push_back(entry.third);
  } else if (std::erase(unit.open_runs, entry.third) > 0) {
    unit.history.last_has_passed = entry.kind == Kind::kPassed;
  }
}

// False for what is not an index.
bool Index::ReadIndex(std::string_view bytes) {
  if (bytes.size() < sizeof(Entry) || bytes.size() % sizeof(Entry) != 0) return false;
  if (std::memcmp(bytes.data(), &kFormat, sizeof kFormat) != 0) return false;
  for (std::size_t at = sizeof(Entry); at < bytes.size(); at += sizeof(Entry)) {
    Entry entry;
    std::memcpy(&entry, bytes.data() + at, sizeof entry);
    Count(entry);
  }
  return FitsTheRecord();
}

// False when a file of the record that the index covers is gone or has become shorter.
bool Index::FitsTheRecord() const {
  std::size_t found = 0;
  for (const RecordFile& file : m_files) {
    const auto covered = m_covered.find(file.hash);
    if (covered == m_covered.end()) continue;
    if (file.bytes < covered->second) return false;
    ++found;
  }
  return found == m_covered.size();
}

std::vector<Entry> Index::ReadWhatIsNew() {
  std::vector<Entry> entries;
  for (const RecordFile& file : m_files) {
    std::uint64_t& covered = m_covered[file.hash];
    if (covered >= file.bytes) continue;
    const MappedFile mapped(file.path);
    std::string_view rest =
        mapped.Bytes().substr(std::min<std::size_t>(covered, mapped.Bytes().size()));
    const std::uint64_t before = covered;
    // Whole lines only: an unfinished one is read when it is ended.
    for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
      if (const auto entry = EntryOf(rest.substr(0, end))) entries.push_back(*entry);
      rest.remove_prefix(end + 1);
      covered += end + 1;
    }
    if (covered != before) entries.push_back({Kind::kCovered, file.hash, covered, 0});
  }
  return entries;
}

// Whether the index may be written: a link could lead to another file, which would be emptied.
bool IsOurs(int file) {
  struct stat status = {};
  return file >= 0 && fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
}

void Index::Ask() {
  const std::string path = RecordDirectory(m_data_directory) + "/units.index";
  const Descriptor file(
      open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  // One process at a time writes the index. Another one reads the rest of the record for itself.
  const bool may_write = IsOurs(file.Number()) && flock(file.Number(), LOCK_EX | LOCK_NB) == 0;
  bool is_whole = false;
  {
    const MappedFile index(path);
    is_whole = ReadIndex(index.Bytes());
  }
  std::vector<Entry> entries;
  if (!is_whole) {
    m_covered.clear();
    for (auto& [hash, unit] : m_units) {
      unit = {};
    }
    entries.push_back(kFormat);
    if (may_write) static_cast<void>(ftruncate(file.Number(), 0) == 0);
  }
  for (const Entry& entry : ReadWhatIsNew()) {
    Count(entry);
    entries.push_back(entry);
  }
  if (may_write && !entries.empty()) {
    const std::size_t bytes = entries.size() * sizeof(Entry);
    // After a partial write the size is not a multiple of an entry, and the index is made again.
    static_cast<void>(write(file.Number(), entries.data(), bytes) >= 0);
  }
}

}  // namespace

UnitHistory HistoryOf(const std::string& data_directory, const std::string& unit,
                      const std::string& job_name) {
  return HistoriesOf(data_directory, {unit}, job_name).front();
}

std::vector<UnitHistory> HistoriesOf(const std::string& data_directory,
                                     const std::vector<std::string>& units,
                                     const std::string& job_name) {
  Index index(data_directory, units, job_name);
  index.Ask();
  std::vector<UnitHistory> histories;
  histories.reserve(units.size());
  for (const std::string& unit : units) {
    histories.push_back(index.HistoryOf(unit));
  }
  return histories;
}

}  // namespace line
