// SPDX-License-Identifier: MIT
//
// The state in which standard input, output and error are used.
#ifndef ZVISP_APP_STANDARD_STREAMS_H_
#define ZVISP_APP_STANDARD_STREAMS_H_

// Opens /dev/null for each of the three that the caller closed, so that no file of the run (the
// flash of a display, say) gets its number and receives our messages. Makes standard output give
// each line away at once: what was printed is seen even when a plug-in hangs or crashes.
void PrepareStandardStreams();

#endif  // ZVISP_APP_STANDARD_STREAMS_H_
