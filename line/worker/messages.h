// SPDX-License-Identifier: MIT
//
// What a worker and its parent say to each other over their pair of sockets. A frame is the length
// of the payload, the type, and the payload. Frames come in this order:
//
//   worker                          parent
//                             <-    Words, as often as there are lists of them to be judged
//   Judged                    ->
//                             <-    Lock, with the open files of the interface's lock
//                             <-    Go
//   Call                      ->    (the call is recorded)
//                             <-    MayCall
//   Progress, Message         ->
//   Result                    ->    (the result is recorded)
//                             <-    Dump, as often as there are ranges to read back
//   Call, ..., Result         ->
//                             <-    Bye
//
// A parent that only wants verdicts says Bye after Judged; one that has them already begins with
// Lock. A worker whose socket ends before Bye has lost its parent.
#ifndef ZVISP_LINE_WORKER_MESSAGES_H_
#define ZVISP_LINE_WORKER_MESSAGES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "line/job/judged_words.h"
#include "line/worker/wire.h"

namespace line {

enum class MessageType : std::uint32_t {
  kJudged = 1,
  kCall,
  kProgress,
  kMessage,
  kResult,
  kWords = 32,
  kLock,
  kGo,
  kMayCall,
  kDump,
  kBye,
};

struct Frame {
  MessageType type = MessageType::kBye;
  std::string payload;
};

// Bytes of the length and the type in front of a payload, and the longest payload that is taken.
inline constexpr std::size_t kFrameHeader = 8;
inline constexpr std::uint32_t kLongestPayload = 4 * 1024 * 1024;

// The whole frame as bytes.
std::string FrameBytes(MessageType type, std::string_view payload);

// Takes the first whole frame off the front of `bytes`. Nothing when it is not all there, or when
// no frame can begin so: `broken` is then true.
std::optional<Frame> TakeFrame(std::string& bytes, bool& broken);

struct CallMessage {
  static constexpr MessageType kType = MessageType::kCall;
  std::string name;  // of the export that is about to be called
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(name);
  }
};

struct ProgressMessage {
  static constexpr MessageType kType = MessageType::kProgress;
  std::int32_t percent = 0;
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(percent);
  }
};

// Bytes of a text that a worker passes on; what is longer is cut.
inline constexpr std::size_t kLongestText = 4096;

struct TextMessage {
  static constexpr MessageType kType = MessageType::kMessage;
  std::string text;  // UTF-8
  bool truncated = false;
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(text);
    archive(truncated);
  }
};

struct ResultMessage {
  static constexpr MessageType kType = MessageType::kResult;
  std::uint32_t code = 0;
  std::string missing = {};  // which plug-in or call is missing, and why; empty for other results
  std::string changed_file = {};  // of those that were checked, one that is not what it was
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(code);
    archive(missing);
    archive(changed_file);
  }
};

struct WordsMessage {
  static constexpr MessageType kType = MessageType::kWords;
  std::vector<std::string> words;  // of zvisp, without a program's name
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(words);
  }
};

// Everything that a worker needs to finish without its parent is here.
struct GoMessage {
  static constexpr MessageType kType = MessageType::kGo;
  std::string setting;           // PackSetting
  std::string sign_args;         // its bytes
  std::string plugin_directory;  // ends in "/"
  std::string data_directory;    // of the record, an absolute path
  std::string run, unit, place, job_name, step;
  std::uint32_t step_index = 0;
  std::uint32_t comm = 0;
  std::uint64_t attempt = 1;
  std::uint32_t state_before = 0;  // UnitState that earlier steps have left
  bool is_last = true;             // no step follows
  bool reads_only = false;         // nothing is called until Dump
  bool reads_back = false;         // Dump follows when the action has succeeded
  bool has_expected = false;
  std::uint32_t expected = 0;  // the scaler type
  std::vector<std::uint32_t> nothing_written;
  // Files that were checked, and their SHA-256: they must be the same before and afterwards.
  std::vector<std::string> checked_files, checked_sha256;
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(setting);
    archive(sign_args);
    archive(plugin_directory);
    archive(data_directory);
    archive(run);
    archive(unit);
    archive(place);
    archive(job_name);
    archive(step);
    archive(step_index);
    archive(comm);
    archive(attempt);
    archive(state_before);
    archive(is_last);
    archive(reads_only);
    archive(reads_back);
    archive(has_expected);
    archive(expected);
    archive(nothing_written);
    archive(checked_files);
    archive(checked_sha256);
  }
};

struct MayCallMessage {
  static constexpr MessageType kType = MessageType::kMayCall;
  bool may = false;
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(may);
  }
};

struct DumpMessage {
  static constexpr MessageType kType = MessageType::kDump;
  std::uint32_t address = 0, length = 0;  // in flash, bytes
  std::string file;                       // absolute path
  template <typename Archive>
  void Fields(Archive& archive) {
    archive(address);
    archive(length);
    archive(file);
  }
};

template <typename Message>
std::string Encode(Message message) {
  ByteWriter writer;
  message.Fields(writer);
  return FrameBytes(Message::kType, writer.Take());
}

// Nothing when the frame is of another type or malformed.
template <typename Message>
std::optional<Message> Decode(const Frame& frame) {
  if (frame.type != Message::kType) return std::nullopt;
  Message message;
  ByteReader reader(frame.payload);
  message.Fields(reader);
  if (!reader.IsWhole()) return std::nullopt;
  return message;
}

// The verdict, the records and what was typed. JudgedWords::said is not part of it: the parent
// reads it from the worker's output.
std::string EncodeJudged(const JudgedWords& words);
std::optional<JudgedWords> DecodeJudged(const Frame& frame);

// A command setting without its unused bank entries, and back: UnpackSetting writes over zeroed
// memory and returns false for bytes that are not such a record.
std::string PackSetting(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting);
bool UnpackSetting(std::string_view bytes, STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& zeroed);

}  // namespace line

#endif  // ZVISP_LINE_WORKER_MESSAGES_H_
