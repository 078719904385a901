// SPDX-License-Identifier: MIT
//
// Batches of simulated displays in the test's own process, which starts itself as their workers.
#ifndef ZVISP_TESTS_LINE_ENGINE_ENGINE_H_
#define ZVISP_TESTS_LINE_ENGINE_ENGINE_H_

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "line/supervise/batch_run.h"
#include "support/scratch_dir.h"
#include "support/simulated_display.h"

#include <gtest/gtest.h>

namespace line {

// What a session has emitted, as lines of JSON.
class KeptLines : public EventSink {
 public:
  void Take(const Event& event) override;
  // All so far; for any thread.
  std::string Text() const;

 private:
  mutable std::mutex m_mutex;
  std::string m_text;
};

class EngineTest : public testing::Test {
 protected:
  EngineTest();
  ~EngineTest() override;

  using Words = std::vector<std::string>;

  // Two banks of firmware.
  std::string Firmware() const { return m_scratch / "fw.bin"; }
  Words Programming(unsigned comm) const;

  // A unit at this interface without steps, and a step of these words.
  UnitRequest Unit(unsigned comm) const;
  StepRequest Step(const std::string& name, const Words& words) const;
  // A unit with one step that programs.
  UnitRequest ProgrammedUnit(unsigned comm) const;

  // Runs them; what was emitted is in Lines() then, and kept for the schema.
  std::vector<UnitEnd> Run(std::vector<UnitRequest> units, const BatchRules& rules = {});
  UnitEnd RunOne(UnitRequest unit);
  // A process of its own does the same, and its number is returned.
  pid_t RunElsewhere(UnitRequest unit);
  int StopSignal() const { return m_stop_signal; }

  std::string Lines() const { return m_lines.Text(); }
  std::string Record() const;
  std::string DataDirectory() const { return m_scratch / "data"; }
  // A program that a hook may be. It runs in the scratch directory.
  std::string GivenHook(const std::string& name, const std::string& text) const;

  ScratchDir m_scratch;
  Displays m_displays;

 private:
  KeptLines m_lines;
  int m_stop_signal = 0;
};

}  // namespace line

#endif  // ZVISP_TESTS_LINE_ENGINE_ENGINE_H_
