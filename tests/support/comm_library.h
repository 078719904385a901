// SPDX-License-Identifier: MIT
//
// A recording communication library (see comm_recorder.c) as a fixture.
#ifndef ZVISP_SUPPORT_COMM_LIBRARY_H_
#define ZVISP_SUPPORT_COMM_LIBRARY_H_

#include <dlfcn.h>

#include <string>

#include "plugin/comm_plugin.h"
#include "support/comm_expected.h"
#include "support/comm_recorder.h"

namespace comm_library {

// What every export answers; each width of a result cuts a different number out of it.
inline constexpr CommWord kAnswer = 0xA1B2C3D4E5F60718;

inline std::string Path(const std::string& name) {
  return ZVISP_COMM_RECORDERS "/" + name + ".dylib";
}

inline int Load(CZvComm& comm, const std::string& path) {
  std::wstring wide(path.begin(), path.end());
  return comm.LoadCommDllFile(wide.data());
}

inline bool IsLoaded(const std::string& path) {
  void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

// The record of a library that somebody has loaded. Valid until it is unloaded.
inline CommRecorder& RecorderOf(const std::string& path) {
  void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  void* const recorder = dlsym(handle, "comm_recorder");
  dlclose(handle);
  return *static_cast<CommRecorder*>(recorder);
}

// The low bytes of a word, as many as a type has.
inline CommWord Cut(CommWord word, int bytes) {
  return bytes >= 8 ? word : word & ((CommWord{1} << (8 * bytes)) - 1);
}

inline constexpr CommWord kZeros[kCommArguments] = {};

// Calls an operation by slot with zeros; the answer cut to the width of its result.
inline CommWord AnswerBySlot(CZvComm& comm, const comm_expected::Operation& operation) {
  return Cut(CallCommSlot(&comm, operation.slot, kZeros), operation.result);
}

// How many operations answer otherwise than without a library; 0 after a refused load.
inline int OperationsThatAreBound(CZvComm& comm) {
  int bound = 0;
  for (const comm_expected::Operation& operation : comm_expected::kOperations) {
    if (operation.result == 0) continue;
    if (AnswerBySlot(comm, operation) != static_cast<CommWord>(operation.unloaded)) ++bound;
  }
  return bound;
}

}  // namespace comm_library

#endif  // ZVISP_SUPPORT_COMM_LIBRARY_H_
