// SPDX-License-Identifier: MIT
#include "line/job/option_scan.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "line/job/nearest_name.h"

namespace line {

namespace {

// The part of "--name=value" before "=", without dashes.
std::string_view NameIn(std::string_view word) {
  return word.substr(2, std::min(word.find('='), word.size()) - 2);
}

// Rows whose name begins so; one alone when it is the whole name.
std::vector<const zvisp::OptionRow*> Candidates(std::string_view name) {
  std::vector<const zvisp::OptionRow*> found;
  for (const zvisp::OptionRow& row : zvisp::kOptions) {
    if (row.name == name) return {&row};
    if (std::string_view(row.name).substr(0, name.size()) == name) found.push_back(&row);
  }
  return found;
}

// The option that was most likely meant, as a question; empty when none is near. After "--", a word
// that is an option's name is none.
std::string Meant(std::string_view word) {
  if (!word.starts_with("--")) return "";
  std::vector<std::string> names;
  for (const zvisp::OptionRow& row : zvisp::kOptions) {
    names.emplace_back(row.name);
  }
  const std::string nearest = NearestName(NameIn(word), names);
  return nearest.empty() || nearest == NameIn(word) ? "" : "did you mean --" + nearest + "?";
}

Refusal NoOption(const std::string& word) {
  const std::string meant = Meant(word);
  return {"not-an-option",
          "The word " + word + " is not an option of zvisp; " +
              (meant.empty() ? "remove it, or check how it is written." : meant),
          word};
}

// What is wrong with a word that the scanner cannot read.
Refusal WhyNot(const std::string& word, const std::vector<const zvisp::OptionRow*>& candidates) {
  if (candidates.empty()) return NoOption(word);
  const std::string name = candidates.front()->name;
  if (candidates.size() > 1) {
    return {"ambiguous",
            "The option " + word + " could be --" + name + " or --" + candidates[1]->name +
                "; write the whole name.",
            word};
  }
  if (candidates.front()->argument == zvisp::kRequiredArgument) {
    return {"value-missing", "The option --" + name + " needs a value; give it after the name.",
            word};
  }
  return {"value-not-taken",
          "The option --" + name + " takes no value; remove the \"=\" and what follows it.", word};
}

// The scanner, and what it is asked to look at.
class Pass {
 public:
  explicit Pass(const std::vector<std::string>& words) : m_words(words) {
    m_pointers.push_back(m_program.data());
    for (std::string& word : m_words) {
      m_pointers.push_back(word.data());
    }
    m_scanner.AddShortCmds(":");  // without diagnostics
    for (const zvisp::OptionRow& row : zvisp::kOptions) {
      m_scanner.AddLongCmd(row.name, row.argument, nullptr, row.value);
    }
  }

  OptionScan Run() {
    while (Index() < m_pointers.size()) {
      Step();
    }
    return std::move(m_scan);
  }

 private:
  std::size_t Index() const { return static_cast<std::size_t>(m_scanner.GetCmdIndex()); }

  void Step();
  void Refuse(Refusal refusal);

  std::string m_program = "zvisp";
  std::vector<std::string> m_words;
  std::vector<char*> m_pointers;
  CpZvCmdLindParse m_scanner;
  bool m_only_words = false;  // after "--"
  OptionScan m_scan;
};

void Pass::Step() {
  const std::string word = m_pointers[Index()];
  if (word == "--") {
    m_only_words = true;
    m_pointers.erase(m_pointers.begin() + m_scanner.GetCmdIndex());
    return;
  }
  if (m_only_words || word.size() < 3 || word.substr(0, 2) != "--") return Refuse(NoOption(word));
  const std::vector<const zvisp::OptionRow*> candidates = Candidates(NameIn(word));
  // The scanner lists the names of an ambiguous word whatever it is asked.
  if (candidates.size() != 1) return Refuse(WhyNot(word, candidates));
  int row = -1;
  m_scanner.ParseCmdLineEx(static_cast<int>(m_pointers.size()), m_pointers.data(), &row);
  if (row < 0) {
    m_scan.refusals.push_back(WhyNot(word, candidates));
    return;
  }
  const char* const value = m_scanner.GetCmdArg();
  m_scan.options.push_back({&zvisp::kOptions[row], value == nullptr ? "" : value});
}

// The scanner never sees the word, so that it continues with the next one.
void Pass::Refuse(Refusal refusal) {
  m_scan.refusals.push_back(std::move(refusal));
  m_pointers.erase(m_pointers.begin() + m_scanner.GetCmdIndex());
}

}  // namespace

const std::string* OptionScan::ValueOf(std::string_view name) const {
  const auto found =
      std::find_if(options.rbegin(), options.rend(),
                   [name](const GivenOption& option) { return option.row->name == name; });
  return found == options.rend() ? nullptr : &found->value;
}

OptionScan ScanOptions(const std::vector<std::string>& words) {
  return Pass(words).Run();
}

std::string ActionNameOf(const OptionScan& scan) {
  const auto found =
      std::find_if(scan.options.begin(), scan.options.end(), [](const GivenOption& option) {
        const zvisp::AddBits* const bits = std::get_if<zvisp::AddBits>(&option.row->effect);
        return bits != nullptr && bits->field == &STRUCT_CP_ISP_CMD_ARGS::ulActionBits;
      });
  return found == scan.options.end() ? "" : found->row->name;
}

}  // namespace line
