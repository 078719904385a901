// SPDX-License-Identifier: MIT
#include "display/programmer.h"

namespace simulator {
namespace {

Outcome ProgramBank(Display& display, const BankJob& job) {
  if (Outcome erased = display.EraseBank(job.bank); !erased.Ok()) return erased;
  if (Outcome written = display.WriteBank(job.bank, job.bytes); !written.Ok()) return written;
  return display.VerifyBank(job.bank, job.bytes);
}

Outcome MayBeSkipped(const Display& display, const BankJob& job, bool& skip) {
  skip = false;
  if (!job.only_if_different) return Done();
  BankBytes stored(kBankBytes);
  Outcome read = display.Read(job.bank * kBankBytes, kBankBytes, stored.data());
  skip = read.Ok() && stored == job.bytes;
  return read;
}

Outcome RunJob(Display& display, const BankJob& job, std::size_t& programmed) {
  bool skip = false;
  if (Outcome read = MayBeSkipped(display, job, skip); !read.Ok()) return read;
  if (skip) return display.Note(Format("skip bank=%u", job.bank));
  if (Outcome done = ProgramBank(display, job); !done.Ok()) return done;
  ++programmed;
  return Done();
}

}  // namespace

Outcome RunPlan(Display& display, const ProgramPlan& plan, const Host& host,
                std::size_t& programmed) {
  programmed = 0;
  host.Progress(0, plan.size());
  for (std::size_t i = 0; i < plan.size(); ++i) {
    if (Outcome done = RunJob(display, plan[i], programmed); !done.Ok()) return done;
    host.Progress(i + 1, plan.size());
  }
  return Done();
}

}  // namespace simulator
