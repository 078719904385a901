// SPDX-License-Identifier: MIT
#include "display/programmer.h"
#include "display/format.h"

namespace simulator {
namespace {

// The parts of a bank that the progress counts: erased, written, verified.
constexpr std::size_t kPartsOfABank = 3;

Outcome ProgramBank(Display& display, const BankJob& job, Progress& progress) {
  if (Outcome erased = display.EraseBank(job.bank); !erased.Ok()) return erased;
  progress.Advance(1);
  if (Outcome written = display.WriteBank(job.bank, job.bytes); !written.Ok()) return written;
  progress.Advance(1);
  if (Outcome verified = display.VerifyBank(job.bank, job.bytes); !verified.Ok()) return verified;
  progress.Advance(1);
  return Done();
}

// The bank is read from the flash itself: what an earlier run recorded does not prove what is
// there.
Outcome MayBeSkipped(const Display& display, const BankJob& job, bool& skip) {
  skip = false;
  if (!job.only_if_different) return Done();
  BankBytes stored(kBankBytes);
  Outcome read = display.Read(job.bank * kBankBytes, kBankBytes, stored.data());
  skip = read.Ok() && stored == job.bytes;
  return read;
}

Outcome RunJob(Display& display, const BankJob& job, Progress& progress, std::size_t& programmed) {
  bool skip = false;
  if (Outcome read = MayBeSkipped(display, job, skip); !read.Ok()) return read;
  if (skip) {
    // A skipped bank counts as done, or the progress would not reach 100.
    progress.Advance(kPartsOfABank);
    return display.Note(Format("skip bank=%u", job.bank));
  }
  if (Outcome done = ProgramBank(display, job, progress); !done.Ok()) return done;
  ++programmed;
  return Done();
}

}  // namespace

Outcome RunPlan(Display& display, const ProgramPlan& plan, const Host& host,
                std::size_t& programmed) {
  programmed = 0;
  Progress progress(host, kPartsOfABank * plan.size());
  for (const BankJob& job : plan) {
    if (Outcome done = RunJob(display, job, progress, programmed); !done.Ok()) return done;
  }
  return Done();
}

}  // namespace simulator
