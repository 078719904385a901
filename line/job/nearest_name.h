// SPDX-License-Identifier: MIT
#ifndef ZVISP_LINE_JOB_NEAREST_NAME_H_
#define ZVISP_LINE_JOB_NEAREST_NAME_H_

#include <string>
#include <string_view>
#include <vector>

namespace line {

// The name that somebody most likely meant who wrote `name`: the one that takes the fewest letters
// added, removed, changed or swapped with their neighbour. Empty when none is near.
std::string NearestName(std::string_view name, const std::vector<std::string>& names);

}  // namespace line

#endif  // ZVISP_LINE_JOB_NEAREST_NAME_H_
