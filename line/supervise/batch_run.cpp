// SPDX-License-Identifier: MIT
#include "line/supervise/batch_run.h"

#include <utility>

namespace line {

namespace {

std::vector<std::unique_ptr<UnitRun>> UnitsOf(std::vector<UnitRequest> requests,
                                              const Reporting& reporting) {
  std::vector<std::unique_ptr<UnitRun>> units;
  units.reserve(requests.size());
  for (UnitRequest& request : requests) {
    units.push_back(std::make_unique<UnitRun>(std::move(request), reporting));
  }
  return units;
}

std::vector<InterfaceUse> UsesOf(const std::vector<std::unique_ptr<UnitRun>>& units) {
  std::vector<InterfaceUse> uses;
  uses.reserve(units.size());
  for (const auto& unit : units) {
    uses.push_back(unit->Use());
  }
  return uses;
}

}  // namespace

BatchRun::BatchRun(std::vector<UnitRequest> units, const BatchRules& rules,
                   const Reporting& reporting)
    : m_units(UnitsOf(std::move(units), reporting)),
      m_schedule(rules, UsesOf(m_units)),
      m_supervisor(reporting, m_units, m_schedule) {}

void BatchRun::Run() {
  m_supervisor.Run();
}

std::vector<UnitEnd> BatchRun::Ends() const {
  std::vector<UnitEnd> ends;
  ends.reserve(m_units.size());
  for (const auto& unit : m_units) {
    ends.push_back(unit->End());
  }
  return ends;
}

}  // namespace line
