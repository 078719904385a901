// SPDX-License-Identifier: MIT
//
// What the recording communication library notes, in C for both sides.
#ifndef ZVISP_SUPPORT_COMM_RECORDER_H_
#define ZVISP_SUPPORT_COMM_RECORDER_H_

typedef unsigned long long CommWord;

enum { kCommArguments = 7, kCommExports = 115 };

struct CommRecorder {
  const char* called;                   // the export that was called last
  int calls;                            // how many calls there were
  CommWord arguments[kCommArguments];   // of the last call; rubbish beyond those that it takes
  CommWord answer;                      // what every export returns
  int look_ups;                         // how many exports were looked up (LOG_LOOK_UPS only)
  const char* looked_up[kCommExports];  // their names, in order
};

#ifdef __cplusplus
extern "C" {
#endif

// Calls an object by slot of its virtual table, counted from 1, as a plug-in that was built
// elsewhere does. Knows nothing of the object's class.
CommWord CallCommSlot(void* object, int slot, const CommWord* arguments);

#ifdef __cplusplus
}
#endif

#endif  // ZVISP_SUPPORT_COMM_RECORDER_H_
