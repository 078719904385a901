// SPDX-License-Identifier: MIT
//
// What serials of a job look like.
#ifndef ZVISP_LINE_JOB_SERIAL_PATTERN_H_
#define ZVISP_LINE_JOB_SERIAL_PATTERN_H_

#include <memory>
#include <string>

namespace line {

// An ECMAScript regular expression without back-references. It takes time that grows with the
// length of pattern and serial, whatever they are.
class SerialPattern {
 public:
  // Null, with the reason in `error`, for what is not such a pattern.
  static std::unique_ptr<SerialPattern> Make(const std::string& pattern, std::string& error);
  ~SerialPattern();
  SerialPattern(const SerialPattern&) = delete;
  SerialPattern& operator=(const SerialPattern&) = delete;

  // The whole serial. False as well for one that is too much for the pattern.
  bool Matches(const std::string& serial) const;

 private:
  struct State;
  explicit SerialPattern(std::unique_ptr<State> state);

  std::unique_ptr<State> m_state;
};

}  // namespace line

#endif  // ZVISP_LINE_JOB_SERIAL_PATTERN_H_
