// SPDX-License-Identifier: MIT
//
// Where the displays live: one directory for all of them, and in it the files of each.
#ifndef ZVISP_SIMULATOR_DISPLAY_HOME_H_
#define ZVISP_SIMULATOR_DISPLAY_HOME_H_

#include <string>

namespace simulator {

// The directory that the environment variable ZVISP_SIM_DIR names; when that is unset or empty,
// "displays" next to the library that this code was linked into.
std::string HomeDirectory();

// The path of a display's file: "<directory>/display-NN.<kind>", with NN the communication number.
std::string DisplayFile(const std::string& directory, unsigned comm_id, const char* kind);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_HOME_H_
