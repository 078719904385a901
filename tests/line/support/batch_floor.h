// SPDX-License-Identifier: MIT
//
// A row of places with simulated displays, a job for them, and what became of each place.
#ifndef ZVISP_TESTS_LINE_SUPPORT_BATCH_FLOOR_H_
#define ZVISP_TESTS_LINE_SUPPORT_BATCH_FLOOR_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "line/support/batch_tool.h"

constexpr std::size_t kBankSize = 65536;

// Programs fw.bin from bank 0 on, and reads it back.
extern const char* const kProgramStep;

// The places P1, P2, ... at the interfaces 1, 2, ..., with the serials ZP1, ZP2, ...
class BatchFloor : public BatchTool {
 public:
  // With fw.bin next to the job, of so many banks.
  explicit BatchFloor(unsigned places, std::size_t banks = 1);

  // Tables of the job, such as "[line]\nstop_after = 3\n".
  void GivenTables(const std::string& tables) { m_tables = tables; }
  void GivenSteps(const std::string& steps) { m_steps = steps; }
  // The interface of a place, when it is not the place's number.
  void GivenInterface(unsigned place, unsigned comm) { m_interfaces.at(place - 1) = comm; }
  // A firmware file next to the job, whose bytes differ from those of another seed.
  void GivenFile(const std::string& name, std::size_t banks, unsigned seed);
  // A shell script next to the job, with these lines.
  void GivenScript(const std::string& name, const std::string& lines) const;

  // Writes the job. `zvisp-line batch` of it with all places, with and without --json.
  Command InJson(Words options = {}) const;
  Command InWords(Words options = {}) const;
  RunResult RunBatch(const Words& options = {}) const { return RunCommand(InJson(options)); }

  unsigned Places() const { return static_cast<unsigned>(m_interfaces.size()); }
  std::string Firmware() const;
  // Whether a call ever reached a display.
  bool WasCalled(unsigned comm) const { return !AllDisplays().Journal(comm).empty(); }
  // How many of its journal's lines begin so.
  std::size_t Noted(unsigned comm, const std::string& start) const;

 private:
  void WriteJob() const;
  Words WordsOf(Words options) const;

  std::vector<unsigned> m_interfaces;
  std::vector<std::string> m_files;
  std::string m_tables, m_steps;
};

// The events of this type at a place, in their order.
std::vector<std::string> EventsAt(const std::string& json_lines, const std::string& type,
                                  unsigned place);
// The only one; empty when there is none, or more than one.
std::string EventAt(const std::string& json_lines, const std::string& type, unsigned place);
// "P1 passed identical" for each place of a batch, in the order of the places.
std::vector<std::string> EndsOf(const std::string& json_lines, unsigned places);
// When an event was emitted, in milliseconds; 0 for none.
std::uint64_t MsOf(const std::string& event);

// A batch that ran to its end, and what the journals of the displays said meanwhile.
struct WatchedBatch {
  RunResult run;
  unsigned most_at_once = 0;  // displays that were in a call at one time
};
WatchedBatch RunAndWatch(const BatchFloor& floor);

#endif  // ZVISP_TESTS_LINE_SUPPORT_BATCH_FLOOR_H_
