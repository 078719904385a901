// SPDX-License-Identifier: MIT
#include "line/job/job_text.h"

#include <cstdio>
#include <string_view>

#include "line/event/screen_text.h"

namespace line {

namespace {

constexpr std::size_t kLongestLine = 100;

std::string Truth(bool value) {
  return value ? "true" : "false";
}

// Seconds without needless digits.
std::string Seconds(double seconds) {
  char text[64];
  std::snprintf(text, sizeof text, "%.3f", seconds);
  std::string digits = text;
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.ends_with('.')) digits.pop_back();
  return digits;
}

// In one line, or each word in its own where they are many.
std::string WordList(const std::vector<std::string>& words) {
  std::string line, lines;
  for (const std::string& word : words) {
    line += (line.empty() ? "" : ", ") + TomlText(word);
    lines += "  " + TomlText(word) + ",\n";
  }
  return line.size() <= kLongestLine ? "[" + line + "]" : "[\n" + lines + "]";
}

std::string HeadText(const Job& job, const std::string& file) {
  const std::string name = CleanText(file);
  return "# A job of zvisp-line. What follows a \"#\" is a remark.\n"
         "# To judge it and touch nothing:\n"
         "#   zvisp-line batch --check " +
         name +
         "\n"
         "# To do it, with --unit once for each place:\n"
         "#   zvisp-line batch --unit " +
         CleanText(job.places.front().name) + "=SERIAL " + name +
         "\n"
         "# Every relative path is relative to this file.\n"
         "schema = 1\n"
         "# The name by which the record knows the job.\n"
         "name = " +
         TomlText(job.name) + "\n";
}

std::string UnitText(const Job& job) {
  return "\n[unit]\n"
         "# What a serial looks like, as a regular expression. The narrower, the more mistakes it\n"
         "# finds: \"^ZP[0-9]{8}$\" takes ZP and eight digits.\n"
         "pattern = " +
         TomlText(job.pattern) +
         "\n"
         "# true: a display that has passed this job is refused.\n"
         "once = " +
         Truth(job.once) + "\n";
}

std::string LineText(const JobLine& line) {
  return "\n[line]\n"
         "# So many displays at one time.\n"
         "jobs_at_once = " +
         std::to_string(line.jobs_at_once) +
         "\n"
         "# Milliseconds between two starts, to spare the power supply and hubs.\n"
         "stagger_ms = " +
         std::to_string(line.stagger_ms) +
         "\n"
         "# true: one display alone at first; the others start when it has passed.\n"
         "first_article = " +
         Truth(line.first_article) +
         "\n"
         "# Start nothing more after so many failures in a row; 0: never stop.\n"
         "stop_after = " +
         std::to_string(line.stop_after) + "\n";
}

std::string FirmwareText(const Job& job) {
  if (job.firmware.empty()) return "";
  std::string text =
      "\n[firmware]\n"
      "# The files that may be used, and no others. After a change: sha256sum FILE.\n";
  for (const JobFirmware& file : job.firmware) {
    text += TomlText(file.path) + " = { sha256 = \"" + file.sha256 +
            "\", bytes = " + std::to_string(file.bytes) + " }\n";
  }
  return text;
}

std::string PluginText(const Job& job) {
  if (job.plugin_sha256.empty()) return "";
  return "\n[plugin]\n"
         "# The only plug-in that may be used. Without this, any one may be.\n"
         "sha256 = \"" +
         job.plugin_sha256 + "\"\n";
}

std::string StepText(const JobStep& step) {
  std::string text =
      "\n# What is done to a display. Steps run in this order; the first that fails ends it.\n"
      "[[step]]\nname = " +
      TomlText(step.name) +
      "\n# Words of zvisp, without --comm and --slave: the place has them.\n" +
      "zvisp = " + WordList(step.words) + "\n# Seconds after which the step is ended.\n" +
      (step.timeout_s ? "timeout_s = " + Seconds(*step.timeout_s) : "# timeout_s = 300") + "\n";
  if (step.readback) text += "# Afterwards the flash is read back and compared.\nreadback = true\n";
  if (step.allow_unsigned) {
    text += "# Files that no signature covers are let through.\nallow_unsigned = true\n";
  }
  if (step.expect) {
    text += "# The scaler type that is right.\nexpect = " + std::to_string(*step.expect) + "\n";
  }
  return text;
}

std::string PlaceText(const JobPlace& place) {
  std::string text = "\n[[place]]\nname = " + TomlText(place.name) +
                     "\n# Number of its interface, 1 to 16.\ncomm = " + std::to_string(place.comm) +
                     "\n";
  if (place.slave) text += "slave = " + std::to_string(*place.slave) + "\n";
  return text;
}

}  // namespace

std::string TomlText(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (code < 0x20 || code == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04X", code);
      quoted += escape;
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::string JobText(const Job& job, const std::string& file) {
  std::string text = HeadText(job, file) + UnitText(job) + LineText(job.line) + FirmwareText(job) +
                     PluginText(job);
  for (const JobStep& step : job.steps) {
    text += StepText(step);
  }
  for (const JobPlace& place : job.places) {
    text += PlaceText(place);
  }
  return text;
}

}  // namespace line
