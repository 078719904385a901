// SPDX-License-Identifier: MIT
#include "line/job/step_name.h"

#include <algorithm>
#include <iterator>
#include <variant>

#include "cmdline/option_table.h"

using namespace zvisp;

namespace line {

std::string StepNameOf(std::uint32_t enumActionType) {
  const auto is_action = [enumActionType](const OptionRow& row) {
    const AddBits* const bits = std::get_if<AddBits>(&row.effect);
    return bits != nullptr && bits->field == &STRUCT_CP_ISP_CMD_ARGS::ulActionBits &&
           bits->number == enumActionType;
  };
  const auto row = std::find_if(std::begin(kOptions), std::end(kOptions), is_action);
  const std::string name = row == std::end(kOptions) ? "" : row->name;
  // isp, ispuser, ispdiff and ispcopy do one thing for an operator: they program.
  return name.starts_with("isp") ? "program" : name;
}

}  // namespace line
