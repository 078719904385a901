// SPDX-License-Identifier: MIT
#include "line/support/batch_floor.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <stdexcept>
#include <thread>

#include "line/job/sha256.h"
#include "support/files.h"

const char* const kProgramStep = R"([[step]]
name = "program"
zvisp = ["--isp", "--fw1", "fw.bin", "--bank1", "0"]
readback = true
)";

namespace {

std::string PlaceName(unsigned place) {
  return "P" + std::to_string(place);
}

// The number of the call that a display is in; empty for none.
std::string OpenCall(const std::vector<std::string>& journal) {
  const auto call = std::find_if(journal.rbegin(), journal.rend(), [](const std::string& line) {
    return line.starts_with("call n=");
  });
  if (call == journal.rend()) return "";
  const std::string number = call->substr(7, call->find(' ', 7) - 7);
  const std::string end = "end n=" + number + " ";
  const bool has_ended = std::any_of(call.base(), journal.end(), [&end](const std::string& line) {
    return line.starts_with(end);
  });
  return has_ended ? "" : number;
}

std::vector<std::string> OpenCalls(const BatchFloor& floor) {
  std::vector<std::string> open;
  for (unsigned comm = 1; comm <= floor.Places(); ++comm)
    open.push_back(OpenCall(floor.AllDisplays().Journal(comm)));
  return open;
}

// A call that was open before the second look began and is open in it was so in between: all of
// these overlap.
unsigned AtOnce(const BatchFloor& floor) {
  const std::vector<std::string> before = OpenCalls(floor);
  const std::vector<std::string> after = OpenCalls(floor);
  unsigned count = 0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!before[i].empty() && before[i] == after[i]) ++count;
  }
  return count;
}

}  // namespace

BatchFloor::BatchFloor(unsigned places, std::size_t banks)
    : m_interfaces(places), m_steps(kProgramStep) {
  std::iota(m_interfaces.begin(), m_interfaces.end(), 1u);
  GivenFile("fw.bin", banks, 1);
}

void BatchFloor::GivenFile(const std::string& name, std::size_t banks, unsigned seed) {
  GivenFirmware(NextToJob(name), banks * kBankSize, seed);
  m_files.push_back(name);
}

void BatchFloor::GivenScript(const std::string& name, const std::string& lines) const {
  ::GivenFile(NextToJob(name), "#!/bin/sh\n" + lines + "\n");
  if (chmod(NextToJob(name).c_str(), 0755) != 0) throw std::runtime_error("chmod " + name);
}

void BatchFloor::WriteJob() const {
  std::string text =
      "schema = 1\nname = \"panel\"\n[unit]\npattern = \"ZP[0-9]+\"\n" + m_tables + "[firmware]\n";
  for (const std::string& file : m_files) {
    text += "\"" + file + "\" = { sha256 = \"" + line::Sha256OfFile(NextToJob(file)).value() +
            "\", bytes = " + std::to_string(ReadWholeFile(NextToJob(file)).size()) + " }\n";
  }
  text += m_steps;
  for (unsigned place = 1; place <= Places(); ++place) {
    text += "[[place]]\nname = \"" + PlaceName(place) +
            "\"\ncomm = " + std::to_string(m_interfaces[place - 1]) + "\n";
  }
  GivenJob(text);
}

LineTool::Words BatchFloor::WordsOf(Words options) const {
  options.insert(options.begin(), {"batch", "--data", DataDirectory()});
  for (unsigned place = 1; place <= Places(); ++place) {
    options.insert(options.end(), {"--unit", PlaceName(place) + "=ZP" + std::to_string(place)});
  }
  options.push_back(NextToJob("job.toml"));
  return options;
}

Command BatchFloor::InWords(Words options) const {
  WriteJob();
  return LineOf(WordsOf(std::move(options)));
}

Command BatchFloor::InJson(Words options) const {
  options.emplace_back("--json");
  return InWords(std::move(options));
}

std::string BatchFloor::Firmware() const {
  return ReadWholeFile(NextToJob("fw.bin"));
}

std::size_t BatchFloor::Noted(unsigned comm, const std::string& start) const {
  const std::vector<std::string> journal = AllDisplays().Journal(comm);
  return static_cast<std::size_t>(
      std::count_if(journal.begin(), journal.end(),
                    [&start](const std::string& line) { return line.starts_with(start); }));
}

std::vector<std::string> EventsAt(const std::string& json_lines, const std::string& type,
                                  unsigned place) {
  std::vector<std::string> events = EventsOf(json_lines, type);
  std::erase_if(events, [place](const std::string& event) {
    return FieldOf(event, "place") != PlaceName(place);
  });
  return events;
}

std::string EventAt(const std::string& json_lines, const std::string& type, unsigned place) {
  const std::vector<std::string> events = EventsAt(json_lines, type, place);
  return events.size() == 1 ? events.front() : "";
}

std::vector<std::string> EndsOf(const std::string& json_lines, unsigned places) {
  std::vector<std::string> ends;
  for (unsigned place = 1; place <= places; ++place) {
    const std::string end = EventAt(json_lines, "unit_result", place);
    ends.push_back(PlaceName(place) + " " + FieldOf(end, "outcome") + " " + FieldOf(end, "state"));
  }
  return ends;
}

std::uint64_t MsOf(const std::string& event) {
  return std::strtoull(FieldOf(event, "mono_ms").c_str(), nullptr, 10);
}

WatchedBatch RunAndWatch(const BatchFloor& floor) {
  WatchedBatch watched;
  StartedRun run(floor.InJson());
  std::atomic<bool> is_over = false;
  std::thread watcher([&] {
    while (!is_over) {
      watched.most_at_once = std::max(watched.most_at_once, AtOnce(floor));
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  });
  watched.run = run.Wait();
  is_over = true;
  watcher.join();
  return watched;
}
