// SPDX-License-Identifier: MIT
//
// The process in which a plug-in runs. zvisp-line starts itself once more for each attempt of a
// step, because a plug-in may crash, hang or end its process, because its progress callback has no
// argument that says whose progress it is, and because the records of a run are globals. What the
// two say to each other is in messages.h.
#ifndef ZVISP_LINE_WORKER_WORKER_H_
#define ZVISP_LINE_WORKER_WORKER_H_

namespace line {

// The word after the program's name that makes it a worker. Not for users.
inline constexpr const char* kWorkerCommand = "worker-of-zvisp-line";

// Where the parent puts the worker's end of the pair of sockets, and the open file that keeps the
// private copies from being taken for stale ones (/dev/null when there are none).
inline constexpr int kWorkerSocket = 3;
inline constexpr int kWorkerCopiesLock = 4;

// The whole life of a worker. `name` begins the messages of zvisp's scanner. Never returns before
// the parent said Bye, or is gone; the return value means nothing to it.
int RunWorker(const char* name);

}  // namespace line

#endif  // ZVISP_LINE_WORKER_WORKER_H_
