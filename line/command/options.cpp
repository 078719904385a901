// SPDX-License-Identifier: MIT
#include "line/command/options.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "line/command/hello.h"

namespace line {

namespace {

// What the option library asks of a value: an empty text, or what is wrong with it. The name of the
// option is in front of it.
std::string ReadWhen(std::string& text) {
  // The index is the number of the enumeration, which the library reads from the text.
  constexpr std::string_view kWhens[] = {"auto", "always", "never"};
  for (std::size_t i = 0; i < std::size(kWhens); ++i) {
    if (text != kWhens[i]) continue;
    text = std::to_string(i);
    return "";
  }
  return text + " is not one of auto, always and never";
}

std::string CheckSeconds(std::string& text) {
  char* end = nullptr;
  const double seconds = std::strtod(text.c_str(), &end);
  // A limit that every clock here can hold in milliseconds.
  const bool is_number = !text.empty() && *end == '\0' && seconds >= 0 && seconds <= 1e9;
  return is_number ? "" : text + " is not a number of seconds";
}

std::string CheckCode(std::string& text) {
  char* end = nullptr;
  const unsigned long long code = std::strtoull(text.c_str(), &end, 0);
  // strtoull would turn "-1" into a large number.
  const bool is_code = !text.empty() && *end == '\0' && text[0] != '-' && code <= 0xFFFFFFFF;
  return is_code ? "" : text + " is not a number from 0 to 0xFFFFFFFF";
}

// An option in the place of a value is a value that was forgotten, or an empty variable of a shell.
std::string CheckText(std::string& text) {
  if (text.substr(0, 2) == "--") return "the value is missing before " + text;
  return text.find_first_not_of(' ') == std::string::npos ? "the text is blank" : "";
}

constexpr const char* kTitle = "Programs one display or many, with progress, record and the truth.";
constexpr const char* kStatuses =
    "Exit status: 0 passed, 1 failed or different, 2 refused, 3 not available,\n"
    "4 not recorded, 5 uncertain, 129, 130 or 143 ended by a signal.";
constexpr const char* kCheckStatuses =
    "Exit status: 0 no check failed, 1 a check failed, 2 refused, 3 not available,\n"
    "129, 130 or 143 ended by a signal.";
constexpr const char* kWords = "What follows \"--\" are the words of zvisp.\n";

// The library would name a command without the program, and show values that no option takes.
class HelpText : public CLI::Formatter {
 public:
  // `usage`: what follows the program's name.
  explicit HelpText(std::string usage) : m_usage(std::move(usage)) {
    label("Positionals", "Arguments");
  }

  std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
    return "Usage: zvisp-line " + m_usage + "\n";
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    const bool takes_value = option->nonpositional() && option->get_type_size() != 0;
    return takes_value ? " " + option->get_type_name() : "";
  }

 private:
  std::string m_usage;
};

// The option library's view of the command line; it writes into `options`.
class Grammar {
 public:
  explicit Grammar(Options& options) : m_app(kTitle, "zvisp-line"), m_options(options) {
    AddVersion(m_app);
    m_app.set_help_flag("--help", "Print this help and exit");
    m_app.footer(kStatuses);
    m_app.formatter(std::make_shared<HelpText>("COMMAND"));
    m_app.require_subcommand(1);
    AddUnitCommands();
    AddJobCommands();
    AddCheckCommand();
    AddJournalCommands();
  }

  // Throws CLI::ParseError.
  void Parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());  // the library takes the last one first
    m_app.parse(arguments);
  }

  CLI::App& App() { return m_app; }

 private:
  static void AddVersion(CLI::App& app) {
    app.set_version_flag("--version", "zvisp-line " + ToolVersion(), "Print the version and exit");
  }

  // `usage`: what follows the program's name; its first words are the command's.
  CLI::App& AddCommand(CLI::App& parent, const char* name, const char* usage, const char* help,
                       Command command) {
    CLI::App& app = *parent.add_subcommand(name, help)->group("Commands");
    app.callback([this, command] { m_options.command = command; });
    app.formatter(std::make_shared<HelpText>(usage));
    AddVersion(app);
    AddCommonOptions(app);
    return app;
  }

  static void AddFlag(CLI::App& app, const char* name, bool& value, const char* help) {
    app.add_flag(name, value, help)->disable_flag_override();
  }

  static CLI::Option& AddText(CLI::App& app, const char* name, std::string& value, const char* type,
                              const char* help) {
    return *app.add_option(name, value, help)
                ->check(CLI::Validator(CheckText, ""))
                ->type_name(type);
  }

  void AddCommonOptions(CLI::App& app) {
    AddFlag(app, "--json", m_options.json, "Report by JSON Lines on standard output");
    AddFlag(app, "--quiet", m_options.quiet, "Print nothing but errors");
    AddWhen(app, "--progress", m_options.progress, "Show progress: auto, always or never");
    AddWhen(app, "--color", m_options.color, "Use colours: auto, always or never");
    AddText(app, "--data", m_options.data, "DIR", "Directory of the record");
  }

  static void AddWhen(CLI::App& app, const char* name, When& when, const char* help) {
    app.add_option(name, when, help)->transform(CLI::Validator(ReadWhen, ""))->type_name("WHEN");
  }

  void AddUnitCommands() {
    AddUnitOptions(AddCommand(m_app, "plan", "plan [OPTIONS] -- ZVISP-WORDS",
                              "Show what would be written where; touch nothing", Command::kPlan));
    CLI::App& run = AddCommand(m_app, "run", "run [OPTIONS] -- ZVISP-WORDS",
                               "Do one action on one display", Command::kRun);
    AddUnitOptions(run);
    AddFlag(run, "--readback", m_options.readback, "Read the flash back afterwards and compare");
    AddIgnore(run);
    CLI::App& readback =
        AddCommand(m_app, "readback", "readback [OPTIONS] -- ZVISP-WORDS",
                   "Compare the flash with what run would have written", Command::kReadback);
    AddUnitOptions(readback);
    AddIgnore(readback);
  }

  void AddIgnore(CLI::App& app) {
    app.add_option("--ignore", m_options.ignore,
                   "Leave these addresses out of the comparison; may be repeated")
        ->allow_extra_args(false)
        ->type_name("FIRST-LAST");
  }

  void AddUnitOptions(CLI::App& app) {
    app.footer(std::string(kWords) + kStatuses);
    AddText(app, "--unit", m_options.unit, "SERIAL", "Serial of the display");
    AddTimeout(app);
    AddWait(app);
    AddPlugins(app);
    app.add_option("--nothing-written", m_options.nothing_written,
                   "Codes by which the plug-in promises that nothing was written")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Validator(CheckCode, ""))
        ->type_name("CODE,...");
    AddStrictness(app);
  }

  void AddTimeout(CLI::App& app) {
    app.add_option("--timeout", m_options.timeout_s, "End the run after so long; 0: never")
        ->check(CLI::Validator(CheckSeconds, ""))
        ->type_name("SECONDS");
  }

  void AddWait(CLI::App& app) {
    app.add_option("--wait", m_options.wait_s, "Wait so long for an interface in use")
        ->check(CLI::Validator(CheckSeconds, ""))
        ->type_name("SECONDS");
  }

  void AddPlugins(CLI::App& app) {
    AddText(app, "--plugins", m_options.plugins, "DIR", "Directory of the plug-ins");
  }

  void AddStrictness(CLI::App& app) {
    AddFlag(app, "--allow-unsigned", m_options.allow_unsigned,
            "Program files that the signature does not cover");
    app.add_option("--expect", m_options.expect, "Scaler type that --getscalertype must answer")
        ->check(CLI::Validator(CheckCode, ""))
        ->type_name("N");
  }

  static void AddTexts(CLI::App& app, const char* name, std::vector<std::string>& values,
                       const char* type, const char* help) {
    app.add_option(name, values, help)
        ->allow_extra_args(false)
        ->check(CLI::Validator(CheckText, ""))
        ->type_name(type);
  }

  void AddJobCommands() {
    CLI::App& batch = AddCommand(m_app, "batch", "batch [OPTIONS] JOB.toml",
                                 "Do a job at all its places at once", Command::kBatch);
    batch.footer(kStatuses);
    batch.add_option("JOB.toml", m_options.job, "The job's file")
        ->required()
        ->check(CLI::Validator(CheckText, ""))
        ->type_name("");
    AddFlag(batch, "--check", m_options.check, "Judge the whole job; touch nothing");
    AddTexts(batch, "--unit", m_options.units, "PLACE=SERIAL",
             "Serial of the display at a place; once for each");
    AddTexts(batch, "--skip", m_options.skip, "PLACE", "Leave a place out; may be repeated");
    AddWait(batch);
    AddPlugins(batch);
    CLI::App& job = *m_app.add_subcommand("job", "Files for batch");
    job.group("Commands");
    job.formatter(std::make_shared<HelpText>("job COMMAND"));
    job.require_subcommand(1);
    AddJobInit(AddCommand(job, "init", "job init [OPTIONS] -- ZVISP-WORDS",
                          "Write a job of these words, with sizes and hashes", Command::kJobInit));
  }

  void AddJobInit(CLI::App& app) {
    app.footer(std::string(kWords) + kStatuses);
    AddText(app, "--output", m_options.output, "FILE", "Write this new file, not standard output");
    AddText(app, "--name", m_options.name, "NAME", "Name of the job");
    AddText(app, "--pattern", m_options.pattern, "REGEX", "What a serial looks like");
    AddTexts(app, "--place", m_options.places, "NAME=COMM",
             "A place and the number of its interface; may be repeated");
    AddTimeout(app);
    AddFlag(app, "--readback", m_options.readback, "Read the flash back afterwards and compare");
    AddStrictness(app);
    AddPlugins(app);
  }

  void AddCheckCommand() {
    CLI::App& check =
        AddCommand(m_app, "check-plugin", "check-plugin [OPTIONS] FILE",
                   "Hold a plug-in against the rules of its header", Command::kCheckPlugin);
    check.footer(kCheckStatuses);
    check.add_option("FILE", m_options.plugin_file, "The plug-in's file")
        ->required()
        ->check(CLI::Validator(CheckText, ""))
        ->type_name("");
    AddFlag(check, "--with-device", m_options.with_device,
            "Also make calls by which a faulty plug-in may program a display");
    check.add_option("--timeout", m_options.timeout_s, "End a check after so long, 10; 0: never")
        ->check(CLI::Validator(CheckSeconds, ""))
        ->type_name("SECONDS");
  }

  void AddJournalCommands() {
    CLI::App& journal = *m_app.add_subcommand("journal", "The record of all displays");
    journal.group("Commands");
    journal.formatter(std::make_shared<HelpText>("journal COMMAND"));
    journal.require_subcommand(1);
    CLI::App& show = AddCommand(journal, "show", "journal show [OPTIONS]", "Print the record",
                                Command::kJournalShow);
    AddText(show, "--unit", m_options.unit, "SERIAL", "Only this display");
    AddText(show, "--run", m_options.run, "RUN", "Only this run");
    AddCommand(journal, "doctor", "journal doctor [OPTIONS]",
               "Name every display that may be half-written", Command::kJournalDoctor);
    CLI::App& resolve = AddCommand(journal, "resolve", "journal resolve [OPTIONS] RUN --note TEXT",
                                   "Clear a display that doctor names", Command::kJournalResolve);
    resolve.add_option("RUN", m_options.run, "The run that doctor names")->required();
    AddText(resolve, "--note", m_options.note, "TEXT", "Why it is clear").required();
  }

  CLI::App m_app;
  Options& m_options;
};

CLI::App& Innermost(CLI::App& app) {
  const std::vector<CLI::App*> inner = app.get_subcommands();
  return inner.empty() ? app : Innermost(*inner.front());
}

// The words that start this command, such as "zvisp-line journal resolve".
std::string WordsOf(const CLI::App& app) {
  const CLI::App* const parent = app.get_parent();
  return parent == nullptr ? app.get_name() : WordsOf(*parent) + " " + app.get_name();
}

// The help says which commands do.
bool TakesWords(const CLI::App& command) {
  return command.get_footer().starts_with(kWords);
}

// What is wrong with a command line. The library ends some of its sentences itself.
std::string Complaint(const CLI::ParseError& error, CLI::App& app, bool has_words) {
  const std::vector<std::string> strangers = app.remaining(true);
  const CLI::App& command = Innermost(app);
  const bool needs_command = command.get_require_subcommand_min() > 0;
  if (strangers.empty()) {
    if (needs_command) return "a command is missing";
    const std::string text = error.what();
    return text.substr(0, text.find_last_not_of(".\n") + 1);
  }
  if (needs_command) return strangers.front() + " is not a command";
  return strangers.front() + " is not an option of " + command.get_name() +
         (has_words || !TakesWords(command) ? "" : "; the words of zvisp belong after \"--\"");
}

std::string Refusal(const std::string& complaint, CLI::App& app) {
  return "Command line: " + complaint + "; see " + WordsOf(Innermost(app)) + " --help.";
}

ParsedOptions TextOf(std::string text) {
  ParsedOptions parsed;
  parsed.kind = ParsedOptions::Kind::kText;
  parsed.text = std::move(text);
  return parsed;
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
    const CLI::App& command = Innermost(grammar.App());
    if (end != arguments.end() && !TakesWords(command)) {
      parsed.text = Refusal(command.get_name() + " takes no words of zvisp", grammar.App());
      return parsed;
    }
    parsed.kind = ParsedOptions::Kind::kRun;
  } catch (const CLI::CallForHelp&) {
    return TextOf(Innermost(grammar.App()).help());
  } catch (const CLI::CallForVersion& version) {
    return TextOf(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    parsed.text = Refusal(Complaint(error, grammar.App(), end != arguments.end()), grammar.App());
    // The printer of a refusal is chosen by these two, wherever the mistake is.
    options.json = std::find(arguments.begin(), end, "--json") != end;
    options.quiet = std::find(arguments.begin(), end, "--quiet") != end;
  }
  return parsed;
}

}  // namespace line
