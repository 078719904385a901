// SPDX-License-Identifier: MIT
//
// Work done as an ordinary user. File permissions say nothing to root, so a test that is about
// them would pass, or fail, for the wrong reason when root runs it.
#ifndef ZVISP_TESTS_SUPPORT_UNPRIVILEGED_H_
#define ZVISP_TESTS_SUPPORT_UNPRIVILEGED_H_

#include <sys/types.h>

#include <functional>
#include <string>

// Forks, gives up root's rights in the child when it has them, and runs the work there. Returns
// what the work returned, 0 to 255; 256 when rights could not be given up; 1000 and the signal's
// number when a signal ended it.
int AsOrdinaryUser(const std::function<int()>& work);

// The same without a change of user: for work that must not leave its limits to other tests.
int InChild(const std::function<int()>& work);

// Sets the permissions; throws std::system_error when it cannot.
void SetMode(const std::string& path, mode_t mode);

#endif  // ZVISP_TESTS_SUPPORT_UNPRIVILEGED_H_
