// SPDX-License-Identifier: MIT
//
// Who may work at an interface of this host: one process at a time, whichever user started it.
// The locks are files in one directory for the whole host, made when missing and never deleted; the
// system lets go of a lock when its process ends, however it ends. zvisp itself takes no lock.
#ifndef ZVISP_LINE_JOURNAL_INTERFACE_LOCK_H_
#define ZVISP_LINE_JOURNAL_INTERFACE_LOCK_H_

#include <cstdint>
#include <string>
#include <vector>

namespace line {

// What a run works at. A run on interface 0, and one with boot code (whose record goes to
// interface 0), has to be alone on the host, because nobody can say which display it reaches.
struct InterfaceUse {
  std::uint32_t comm = 0;  // 0 to 16
  bool alone = false;
};

class InterfaceLock {
 public:
  InterfaceLock() = default;
  ~InterfaceLock() { Release(); }
  InterfaceLock(const InterfaceLock&) = delete;
  InterfaceLock& operator=(const InterfaceLock&) = delete;

  enum class Answer { kTaken, kInUse, kNotAvailable };

  // Tries once and never waits. Somebody who only asks whether an interface is free holds it for a
  // moment, so one kInUse proves little. `holder` is one line about this process, for those who
  // find the interface in use. When the lock is not taken, `reason` says who has it ("Interface 3
  // is in use by ..."), or is a sentence about what is wrong with the directory.
  Answer Take(const InterfaceUse& use, const std::string& holder, std::string& reason);

  void Release();

  // The open files that the lock belongs to; none when it is not taken. A process that gets
  // descriptors of its own for them holds the lock as well, until the last of these is closed.
  std::vector<int> Files() const;

 private:
  Answer TakeOnce(const InterfaceUse& use, const std::string& holder, std::string& reason);

  int m_host = -1;
  int m_interface = -1;
};

// False while a process holds the interface. True when that cannot be found out.
bool IsInterfaceFree(std::uint32_t comm);

}  // namespace line

#endif  // ZVISP_LINE_JOURNAL_INTERFACE_LOCK_H_
