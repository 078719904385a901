// SPDX-License-Identifier: MIT
#include "line/command/options.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include <CLI/CLI.hpp>

#include "line/command/hello.h"

namespace line {

namespace {

// What the option library asks of a value: an empty text, or what is wrong with it. The name of the
// option is in front of it.
std::string ReadWhen(std::string& text) {
  constexpr std::string_view kWhens[] = {"auto", "always", "never"};
  for (std::size_t i = 0; i < std::size(kWhens); ++i) {
    if (text != kWhens[i]) continue;
    text = std::to_string(i);
    return "";
  }
  return text + " is none of auto, always and never";
}

std::string CheckSeconds(std::string& text) {
  char* end = nullptr;
  const double seconds = std::strtod(text.c_str(), &end);
  const bool is_number = !text.empty() && *end == '\0' && seconds >= 0 && seconds <= 1e9;
  return is_number ? "" : text + " is no number of seconds";
}

std::string CheckCode(std::string& text) {
  char* end = nullptr;
  const unsigned long long code = std::strtoull(text.c_str(), &end, 0);
  const bool is_code = !text.empty() && *end == '\0' && text[0] != '-' && code <= 0xFFFFFFFF;
  return is_code ? "" : text + " is no number from 0 to 0xFFFFFFFF";
}

std::string CheckText(std::string& text) {
  return text.find_first_not_of(' ') == std::string::npos ? "the text is blank" : "";
}

constexpr const char* kTitle = "Programs displays one by one, with progress, record and the truth.";
constexpr const char* kFooter =
    "What follows \"--\" are the words of zvisp. Exit status: 0 passed, 1 failed or different, "
    "2 refused, 3 not available, 4 not recorded, 5 uncertain, 129, 130 or 143 ended by a signal.";

// The option library's view of the command line; it writes into `options`.
class Grammar {
 public:
  explicit Grammar(Options& options) : m_app(kTitle, "zvisp-line"), m_options(options) {
    m_app.set_version_flag("--version", Version());
    m_app.set_help_flag("--help", "Print this help and exit");
    m_app.footer(kFooter);
    m_app.require_subcommand(1);
    AddUnitCommands();
    AddJournalCommands();
  }

  // Throws CLI::ParseError.
  void Parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());  // the library takes the last one first
    m_app.parse(arguments);
  }

  CLI::App& App() { return m_app; }

 private:
  static std::string Version() { return "zvisp-line " + ToolVersion(); }

  CLI::App* AddCommand(CLI::App& parent, const char* name, const char* help, Command command) {
    CLI::App* const app = parent.add_subcommand(name, help);
    app->callback([this, command] { m_options.command = command; });
    app->set_version_flag("--version", Version());
    AddCommonOptions(*app);
    return app;
  }

  void AddCommonOptions(CLI::App& app) {
    app.add_flag("--json", m_options.json, "Report by JSON Lines on standard output");
    app.add_flag("--quiet", m_options.quiet, "Print nothing but errors");
    AddWhen(app, "--progress", m_options.progress, "Show progress: auto, always or never");
    AddWhen(app, "--color", m_options.color, "Use colours: auto, always or never");
    app.add_option("--data", m_options.data, "Directory of the record")
        ->check(CLI::Validator(CheckText, ""))
        ->type_name("DIR");
  }

  static void AddWhen(CLI::App& app, const char* name, When& when, const char* help) {
    app.add_option(name, when, help)->transform(CLI::Validator(ReadWhen, ""))->type_name("WHEN");
  }

  void AddUnitCommands() {
    AddUnitOptions(*AddCommand(m_app, "plan", "Show what would be written where; touch nothing",
                               Command::kPlan));
    CLI::App* const run = AddCommand(m_app, "run", "Do one action on one display", Command::kRun);
    AddUnitOptions(*run);
    run->add_flag("--readback", m_options.readback, "Read the flash back afterwards and compare");
    AddIgnore(*run);
    CLI::App* const readback =
        AddCommand(m_app, "readback", "Compare the flash with what run would have written",
                   Command::kReadback);
    AddUnitOptions(*readback);
    AddIgnore(*readback);
  }

  void AddIgnore(CLI::App& app) {
    app.add_option("--ignore", m_options.ignore, "Leave these addresses out of the comparison")
        ->type_name("FIRST-LAST");
  }

  void AddUnitOptions(CLI::App& app) {
    app.add_option("--unit", m_options.unit, "Serial of the display")
        ->check(CLI::Validator(CheckText, ""))
        ->type_name("SERIAL");
    app.add_option("--timeout", m_options.timeout_s, "End the run after so long; 0: never")
        ->check(CLI::Validator(CheckSeconds, ""))
        ->type_name("SECONDS");
    app.add_option("--wait", m_options.wait_s, "Wait so long for an interface in use")
        ->check(CLI::Validator(CheckSeconds, ""))
        ->type_name("SECONDS");
    app.add_option("--plugins", m_options.plugins, "Directory of the plug-ins")
        ->check(CLI::Validator(CheckText, ""))
        ->type_name("DIR");
    app.add_option("--nothing-written", m_options.nothing_written,
                   "Codes by which the plug-in promises that nothing was written")
        ->delimiter(',')
        ->check(CLI::Validator(CheckCode, ""))
        ->type_name("CODE,...");
    app.add_flag("--allow-unsigned", m_options.allow_unsigned,
                 "Program banks that the signature does not cover");
    app.add_option("--expect", m_options.expect, "Scaler type that --getscalertype must answer")
        ->check(CLI::Validator(CheckCode, ""))
        ->type_name("N");
  }

  void AddJournalCommands() {
    CLI::App* const journal = m_app.add_subcommand("journal", "The record of all displays");
    journal->require_subcommand(1);
    CLI::App* const show = AddCommand(*journal, "show", "Print the record", Command::kJournalShow);
    show->add_option("--unit", m_options.unit, "Only this display")->type_name("SERIAL");
    show->add_option("--run", m_options.run, "Only this run")->type_name("RUN");
    AddCommand(*journal, "doctor", "Name every display that may be half-written",
               Command::kJournalDoctor);
    CLI::App* const resolve = AddCommand(*journal, "resolve", "Clear a display that doctor names",
                                         Command::kJournalResolve);
    resolve->add_option("run", m_options.run, "The run that doctor names")
        ->required()
        ->type_name("RUN");
    resolve->add_option("--note", m_options.note, "Why it is clear")->required()->type_name("TEXT");
  }

  CLI::App m_app;
  Options& m_options;
};

// The library ends some of its sentences itself and starts some with a capital.
std::string Sentence(const std::string& complaint) {
  std::string text = complaint.substr(0, complaint.find('\n'));
  if (!text.empty() && text.back() == '.') text.pop_back();
  return "Command line: " + text + "; see zvisp-line --help.";
}

ParsedOptions TextOf(std::string text) {
  ParsedOptions parsed;
  parsed.kind = ParsedOptions::Kind::kText;
  parsed.text = std::move(text);
  return parsed;
}

CLI::App& Innermost(CLI::App& app) {
  const std::vector<CLI::App*> inner = app.get_subcommands();
  return inner.empty() ? app : Innermost(*inner.front());
}

}  // namespace

ParsedOptions ParseOptions(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  ParsedOptions parsed;
  Options& options = parsed.options;
  if (end != arguments.end()) options.words.assign(end + 1, arguments.end());
  Grammar grammar(options);
  try {
    grammar.Parse({arguments.begin(), end});
    parsed.kind = ParsedOptions::Kind::kRun;
  } catch (const CLI::CallForHelp&) {
    return TextOf(Innermost(grammar.App()).help());
  } catch (const CLI::CallForVersion& version) {
    return TextOf(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    parsed.text = Sentence(error.what());
    // The printer of a refusal is chosen by these two, wherever the mistake is.
    options.json = std::find(arguments.begin(), end, "--json") != end;
    options.quiet = std::find(arguments.begin(), end, "--quiet") != end;
  }
  return parsed;
}

}  // namespace line
