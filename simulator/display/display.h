// SPDX-License-Identifier: MIT
//
// One simulated display, held for the time of one plug-in call.
#ifndef ZVISP_SIMULATOR_DISPLAY_DISPLAY_H_
#define ZVISP_SIMULATOR_DISPLAY_DISPLAY_H_

#include <cstdint>
#include <memory>
#include <string>

#include "display/counters.h"
#include "display/faults.h"
#include "display/flash.h"
#include "display/identity.h"
#include "display/outcome.h"
#include "display/state.h"
#include "files/file_look.h"

namespace simulator {

inline constexpr unsigned kMaxCommId = 16;

// A display belongs to one run at a time: it is locked from Open to destruction, and the system
// gives the lock back when the process ends, however it ends.
class Display {
 public:
  // Opens the display of a communication number, making its directory and files at the first use,
  // and counts a call. Refuses a number above kMaxCommId and, without waiting, a display in use.
  // `display` is set only on success. The files that the display writes are never opened through
  // a symbolic link, so that a planted one leads to no other file.
  static Outcome Open(unsigned comm_id, std::unique_ptr<Display>& display);

  // What an operator should know although the call continues: that the state could not be read and
  // the display counts as new. Empty otherwise.
  const std::string& Warning() const { return m_warning; }

  // Adds a line to the journal.
  Outcome Note(const std::string& line);

  // The steps of programming a bank. Each lets the faults strike, counts and notes itself, and
  // refuses when a fault ends the call or a file fails. Verify refuses a bank whose bytes are not
  // the ones given.
  Outcome EraseBank(std::uint32_t bank);
  Outcome WriteBank(std::uint32_t bank, const BankBytes& bytes);
  Outcome VerifyBank(std::uint32_t bank, const BankBytes& bytes);
  // Reads flash; `address` + `length` lies inside it.
  Outcome Read(std::uint32_t address, std::uint32_t length, std::uint8_t* out) const;
  // The verify key stored in the display: 1 to `capacity` bytes.
  Outcome ReadKey(std::size_t capacity, std::string& key) const;

  Outcome SaveState() const;

  // Whether a file is one of this display or of those next to it.
  bool IsFileOfADisplay(const struct stat& look) const;

  const Faults& GetFaults() const { return m_faults; }
  const Identity& GetIdentity() const { return m_identity; }
  State& GetState() { return m_state; }

 private:
  Display(std::string directory, unsigned comm_id, FileHandle flash)
      : m_directory(std::move(directory)), m_comm_id(comm_id), m_flash(std::move(flash)) {}

  std::string PathOf(const char* kind) const;
  Outcome LoadFiles();
  void LoadState();
  Outcome OpenJournal();
  Outcome LoadSettings();
  Outcome ReadSettingsFile(const char* kind, std::string& text) const;

  std::string m_directory;
  unsigned m_comm_id;
  Flash m_flash;
  FileHandle m_journal;
  Counters m_counters;
  State m_state;
  std::string m_warning;
  Identity m_identity;
  Faults m_faults;
};

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_DISPLAY_H_
