// SPDX-License-Identifier: MIT
#include "line/event/event_json.h"

#include <cstdio>

#include <nlohmann/json.hpp>

#include "line/event/time_text.h"

namespace line {

namespace {

using Json = nlohmann::ordered_json;

// A field that does not apply is left out of the JSON.
void Put(Json& json, const char* key, const std::string& text) {
  if (!text.empty()) json[key] = text;
}

template <typename Value>
void Put(Json& json, const char* key, const std::optional<Value>& value) {
  if (value.has_value()) json[key] = *value;
}

void PutWhere(Json& json, const Where& where) {
  Put(json, "run", where.run);
  Put(json, "unit", where.unit);
  Put(json, "place", where.place);
  Put(json, "comm", where.comm);
  Put(json, "step", where.step);
  Put(json, "step_index", where.step_index);
  if (where.phase.has_value()) json["phase"] = NameOf(*where.phase);
  Put(json, "job_name", where.job_name);
}

Json JobJson(const HelloEvent::Job& job) {
  Json json = {{"name", job.name}, {"path", job.path}, {"sha256", job.sha256}};
  for (const BatchUnit& one : job.units) {
    Json unit = {{"place", one.place}, {"unit", one.unit}};
    Put(unit, "comm", one.comm);
    json["units"].push_back(unit);
  }
  return json;
}

// One function for each type of event: adds its own fields and returns the type's name.
const char* PutBody(Json& json, const HelloEvent& hello) {
  json["tool_version"] = hello.tool_version;
  json["pid"] = hello.pid;
  json["host"] = hello.host;
  json["operator"] = hello.operator_name;
  if (hello.plugin) {
    json["plugin"] = {{"path", hello.plugin->path}, {"sha256", hello.plugin->sha256}};
  }
  if (hello.job) json["job"] = JobJson(*hello.job);
  return "hello";
}

Json FileJson(const PlannedFile& file) {
  return {{"slot", file.slot},
          {"path", file.path},
          {"bytes", file.bytes},
          {"sha256", file.sha256},
          {"start_bank", file.start_bank}};
}

Json BankJson(const PlannedBank& bank) {
  return {{"target", bank.target},
          {"slot", bank.slot},
          {"file_bank", bank.file_bank},
          {"bytes", bank.bytes},
          {"sha256", bank.sha256}};
}

const char* PutBody(Json& json, const PlanEvent& plan) {
  json["action"] = plan.action;
  json["files"] = Json::array();
  for (const PlannedFile& file : plan.files) {
    json["files"].push_back(FileJson(file));
  }
  // The record keeps a plan without its banks, and then has no such field either.
  if (!plan.banks.empty()) json["banks"] = Json::array();
  for (const PlannedBank& bank : plan.banks) {
    json["banks"].push_back(BankJson(bank));
  }
  json["warnings"] = Json::array();
  for (const Warning& warning : plan.warnings) {
    json["warnings"].push_back({{"id", warning.id}, {"text", warning.text}});
  }
  return "plan";
}

const char* PutBody(Json& json, const WaitEvent& wait) {
  json["for"] = NameOf(wait.reason);
  Put(json, "text", wait.text);
  return "wait";
}

const char* PutBody(Json& json, const UnitStartEvent& start) {
  json["attempt"] = start.attempt;
  json["unsigned"] = start.is_unsigned;
  return "unit_start";
}

const char* PutBody(Json& json, const StartEvent& start) {
  Put(json, "timeout_s", start.timeout_s);
  return "start";
}

const char* PutBody(Json& json, const StateEvent& change) {
  json["state"] = NameOf(change.state);
  json["previous"] = NameOf(change.previous);
  Put(json, "call", change.call);
  return "state";
}

const char* PutBody(Json& json, const ProgressEvent& progress) {
  json["percent"] = progress.percent;
  json["elapsed_ms"] = progress.elapsed_ms;
  return "progress";
}

const char* PutBody(Json& json, const MessageEvent& message) {
  json["source"] = NameOf(message.source);
  json["level"] = NameOf(message.level);
  json["text"] = message.text;
  json["truncated"] = message.truncated;
  return "message";
}

void PutCode(Json& json, const std::optional<std::uint32_t>& code) {
  // Both are always there: null means that no result arrived, which 0 would hide.
  json["code"] = nullptr;
  json["code_hex"] = nullptr;
  if (!code.has_value()) return;
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%X", static_cast<unsigned int>(*code));
  json["code"] = *code;
  json["code_hex"] = hex;
}

const char* PutBody(Json& json, const ResultEvent& result) {
  json["outcome"] = NameOf(result.outcome);
  json["state"] = NameOf(result.state);
  PutCode(json, result.code);
  Put(json, "code_source", result.code_source);
  Put(json, "meaning", result.meaning);
  Put(json, "value", result.value);
  Put(json, "expected", result.expected);
  Put(json, "signal", result.signal);
  Put(json, "last_percent", result.last_percent);
  Put(json, "compared_bytes", result.compared_bytes);
  if (result.difference) {
    json["difference"] = {{"bank", result.difference->bank},
                          {"address", result.difference->address},
                          {"expected", result.difference->expected},
                          {"actual", result.difference->actual}};
  }
  json["duration_ms"] = result.duration_ms;
  return "result";
}

const char* PutBody(Json& json, const UnitResultEvent& result) {
  json["outcome"] = NameOf(result.outcome);
  json["state"] = NameOf(result.state);
  json["attempt"] = result.attempt;
  Put(json, "failed_step", result.failed_step);
  json["recorded"] = result.recorded;
  json["duration_ms"] = result.duration_ms;
  Put(json, "reason", result.reason);
  return "unit_result";
}

const char* PutBody(Json& json, const ErrorEvent& error) {
  json["id"] = error.id;
  json["text"] = error.text;
  Put(json, "file", error.file);
  Put(json, "line", error.line);
  Put(json, "column", error.column);
  return "error";
}

const char* PutBody(Json& json, const ResolvedEvent& resolved) {
  json["note"] = resolved.note;
  return "resolved";
}

const char* PutBody(Json& json, const FindingEvent& finding) {
  json["state"] = NameOf(finding.state);
  Put(json, "last_percent", finding.last_percent);
  json["since"] = finding.since;
  return "finding";
}

const char* PutBody(Json& json, const CheckEvent& check) {
  json["id"] = check.id;
  json["title"] = check.title;
  json["outcome"] = NameOf(check.outcome);
  json["text"] = check.text;
  return "check";
}

const char* PutBody(Json& json, const SummaryEvent& summary) {
  json["outcomes"] = Json::object();
  json["states"] = Json::object();
  for (const auto& [outcome, count] : summary.outcomes) {
    json["outcomes"][std::string(NameOf(outcome))] = count;
  }
  for (const auto& [state, count] : summary.states) {
    json["states"][std::string(NameOf(state))] = count;
  }
  for (const auto& [outcome, count] : summary.checks) {
    json["checks"][std::string(NameOf(outcome))] = count;
  }
  return "summary";
}

const char* PutBody(Json& json, const EndEvent& end) {
  json["exit_status"] = end.exit_status;
  json["interrupted"] = end.interrupted;
  return "end";
}

// A record may come from a newer version or a damaged disk. A field of another type counts as
// missing, and nothing throws.
std::string TextAt(const Json& json, const char* key) {
  const auto found = json.find(key);
  return found != json.end() && found->is_string() ? found->get<std::string>() : "";
}

template <typename Value>
std::optional<Value> NumberAt(const Json& json, const char* key) {
  const auto found = json.find(key);
  if (found == json.end() || !found->is_number_integer()) return std::nullopt;
  return found->get<Value>();
}

Where WhereIn(const Json& json) {
  Where where;
  where.run = TextAt(json, "run");
  where.unit = TextAt(json, "unit");
  where.place = TextAt(json, "place");
  where.comm = NumberAt<std::uint32_t>(json, "comm");
  where.step = TextAt(json, "step");
  where.job_name = TextAt(json, "job_name");
  return where;
}

}  // namespace

std::string ToJsonLine(const Event& event) {
  Json json;
  json["v"] = 1;
  // Keeps the second place for the type: TypeOfLine reads it there without parsing the line.
  json["type"] = "";
  json["time"] = TimeText(event.time_ms);
  json["mono_ms"] = event.mono_ms;
  json["session"] = event.session;
  json["seq"] = event.seq;
  PutWhere(json, event.where);
  json["type"] = std::visit([&json](const auto& body) { return PutBody(json, body); }, event.body);
  // A plug-in may print any bytes. Without `replace`, dump throws for those that are not UTF-8.
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<RecordedEvent> FromJsonLine(std::string_view line) {
  // Without exceptions: text that is not JSON gives a value that is not an object.
  const Json json = Json::parse(line, nullptr, false);
  if (!json.is_object()) return std::nullopt;
  RecordedEvent event;
  event.type = TextAt(json, "type");
  if (event.type.empty()) return std::nullopt;
  event.time = TextAt(json, "time");
  event.session = TextAt(json, "session");
  event.where = WhereIn(json);
  event.state = StateNamed(TextAt(json, "state"));
  event.outcome = OutcomeNamed(TextAt(json, "outcome"));
  event.percent = NumberAt<int>(json, event.type == "progress" ? "percent" : "last_percent");
  event.note = TextAt(json, "note");
  event.text = TextAt(json, "text");
  event.reason = TextAt(json, "reason");
  return event;
}

}  // namespace line
