// SPDX-License-Identifier: MIT
//
// The state in which standard input, output and error are used.
#ifndef ZVISP_APP_STANDARD_STREAMS_H_
#define ZVISP_APP_STANDARD_STREAMS_H_

namespace zvisp {

// Opens /dev/null for each of the three that the caller closed, so that no file of the run (for
// instance the flash of a display) gets its number and receives our messages. Makes standard output
// write each line at once: the operator sees it even when a plug-in hangs or crashes later.
void PrepareStandardStreams();

}  // namespace zvisp

#endif  // ZVISP_APP_STANDARD_STREAMS_H_
