// SPDX-License-Identifier: MIT
#include "line/engine/engine.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "line/event/event_json.h"
#include "line/supervise/judge_words.h"
#include "line/support/kept_events.h"
#include "line/worker/worker.h"
#include "support/files.h"

namespace line {

namespace fs = std::filesystem;

void KeptLines::Take(const Event& event) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_text += ToJsonLine(event);
}

std::string KeptLines::Text() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_text;
}

EngineTest::EngineTest() : m_displays(m_scratch / "displays") {
  setenv("ZVISP_LINE_LOCK_DIR", (m_scratch / "locks").c_str(), 1);
  setenv("ZVISP_SIM_DIR", (m_scratch / "displays").c_str(), 1);
  GivenDirectory(m_scratch / "displays");
  GivenDirectory(m_scratch / "PlugIn");
  fs::create_symlink(ZVISP_SIMULATOR, m_scratch / "PlugIn/libIsp.dylib");
  GivenFirmware(Firmware(), 2 * 65536);
}

EngineTest::~EngineTest() {
  unsetenv("ZVISP_LINE_LOCK_DIR");
  unsetenv("ZVISP_SIM_DIR");
}

EngineTest::Words EngineTest::Programming(unsigned comm) const {
  return {"--isp", "--fw", Firmware(), "--comm", std::to_string(comm)};
}

UnitRequest EngineTest::Unit(unsigned comm) const {
  UnitRequest unit;
  unit.where.run = NewUuid();
  unit.where.unit = "ZP" + std::to_string(comm);
  unit.where.place = "A" + std::to_string(comm);
  unit.where.comm = comm;
  unit.where.job_name = "panel";
  unit.hook_directory = m_scratch.Path();
  unit.hook_timeout_ms = 30000;
  return unit;
}

StepRequest EngineTest::Step(const std::string& name, const Words& words) const {
  std::string error;
  auto judged = JudgeInWorker({words}, error);
  EXPECT_TRUE(judged && judged->front().accepted) << error;
  StepRequest step;
  step.name = name;
  step.judged = std::move(judged->front());
  step.plugin_directory = m_scratch / "";
  step.data_directory = DataDirectory();
  step.dump_prefix = m_scratch / "dump-";
  return step;
}

UnitRequest EngineTest::ProgrammedUnit(unsigned comm) const {
  UnitRequest unit = Unit(comm);
  unit.steps.push_back(Step("program", Programming(comm)));
  return unit;
}

std::vector<UnitEnd> EngineTest::Run(std::vector<UnitRequest> units, const BatchRules& rules) {
  std::string error;
  const std::unique_ptr<Journal> journal = Journal::Open(DataDirectory(), error);
  EXPECT_NE(journal, nullptr) << error;
  JournalSink record(*journal);
  Session session;
  session.Add(m_lines);
  session.Add(record);
  BatchRun batch(std::move(units), rules, {session, *journal, record});
  batch.Run();
  m_stop_signal = batch.StopSignal();
  KeepForSchema(Lines());
  return batch.Ends();
}

UnitEnd EngineTest::RunOne(UnitRequest unit) {
  std::vector<UnitRequest> units;
  units.push_back(std::move(unit));
  return Run(std::move(units)).front();
}

pid_t EngineTest::RunElsewhere(UnitRequest unit) {
  const pid_t process = fork();
  if (process != 0) return process;
  RunOne(std::move(unit));
  _exit(0);
}

std::string EngineTest::Record() const {
  std::string all;
  if (!FileExists(DataDirectory() + "/journal")) return all;
  for (const auto& entry : fs::directory_iterator(DataDirectory() + "/journal")) {
    if (entry.path().extension() == ".jsonl") all += ReadWholeFile(entry.path().string());
  }
  return all;
}

std::string EngineTest::GivenHook(const std::string& name, const std::string& text) const {
  const std::string path = GivenFile(m_scratch / name, "#!/bin/sh\n" + text);
  chmod(path.c_str(), 0755);
  return path;
}

}  // namespace line

// The workers are this program as well.
int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], line::kWorkerCommand) == 0) return line::RunWorker(argv[2]);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
