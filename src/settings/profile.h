// SPDX-License-Identifier: MIT
//
// Reads one value from, or writes one value into, a small text file of sections and key lines. The
// wide family is the one the tool uses; the narrow family differs where its comments say so.
//
// The syntax, which has no comments and no quotes:
//   - A section begins at a line that, blanks at both ends removed, is "[section]". Case counts.
//   - A key line holds "=": its name is before the first one, its value after the last one.
//     "a=b=c" has the name "a" and the value "c".
//   - Every line without "=" ends the section, an empty line included.
//   - A line of 1024 characters or more, or one that the locale cannot read, ends the file: that
//     line and all that follows do not exist for the reader, and are lost when the file is written.
//
// Only an ordinary file, or a link to one, can be opened: nothing here waits for the other end of a
// FIFO, or reads a device without end.
//
// Nothing is locked. Of two writers at once, one may read the file after the other has truncated
// it: the lines that it did not see are lost. Nothing throws but memory exhaustion.
#ifndef ZVISP_SETTINGS_PROFILE_H_
#define ZVISP_SETTINGS_PROFILE_H_

#include <cstddef>
#include <string>
#include <vector>

namespace zvisp {

// Wide units or bytes, terminating zero included, that every output buffer must hold.
constexpr unsigned int kProfileValueCapacity = 1024;

}  // namespace zvisp

// The wide family: file names and contents in the encoding of the environment's locale.

// Copies the value, blanks at both ends removed, whole and with its terminating zero into
// `output`; `output_size` is not used. Returns the value's length in wide units.
// Returns 0 when there is no value, prints nothing, and
//   - copies the default when the file ends before the key or the section was found;
//   - leaves `output` untouched when the file cannot be opened, or the section ends at a line
//     without "=" before the key.
unsigned int CpZvGetPrivateProfileStringW(const wchar_t* section, const wchar_t* key,
                                          const wchar_t* default_value, wchar_t* output,
                                          unsigned int output_size, const wchar_t* file_name);

// The value as a decimal, "0x" hexadecimal or leading-zero octal number; what follows the number
// is ignored, and text that does not begin with one gives 0. The default when the value is missing
// or empty.
int CpZvGetPrivateProfileIntW(const wchar_t* section, const wchar_t* key, int default_value,
                              const wchar_t* file_name);

// Rewrites the file with the value; creates it when it is missing. Every line loses the blanks at
// both ends. A new key goes before the first line without "=" of its section, else to the end of
// the file; a new section goes to the end.
//   - Names are compared with all that is before "=": "key = 1" is not the key "key" for the
//   writer.
//   - All but the last piece of a value stays: 5 written over "a=1=2" gives "a=1=5".
// Returns 1, or 0 with the file unchanged: after printing "Open file error " and a newline when it
// cannot be opened for writing, silently when the locale cannot write the texts given. A disk that
// is full shows in neither.
int CpZvWritePrivateProfileStringW(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                                   const wchar_t* file_name);

namespace zvisp {

// A key and the value that it gets.
template <typename Text>
struct ProfileChange {
  Text key;
  Text value;
};

// Writes values for several keys of one section, with the same bytes and messages as a call of
// CpZvWritePrivateProfileStringW for each, but reads and writes the file once. Where the bytes
// would differ it writes key by key: when a key comes twice, when a value holds a newline, ends in
// a blank or makes a line too long, when the disk is full, and when the file can be written but not
// read.
void WriteProfileChanges(const wchar_t* section,
                         const std::vector<ProfileChange<std::wstring>>& changes,
                         const wchar_t* file_name);

// The value cut so that it fits `capacity` wide units with its terminating zero; empty when there
// is none.
std::wstring ReadProfileText(const wchar_t* section, const wchar_t* key, const wchar_t* file_name,
                             std::size_t capacity);

}  // namespace zvisp

// The narrow family: bytes as they are. Header lines, and all lines that are written, go through
// DeleteBlankA, which never returns once a line holds a blank: only for files without blanks.

// As the wide one, but neither name nor value loses blanks, and "Error " with a newline is printed
// when the file cannot be opened.
unsigned int CpZvGetPrivateProfileStringA(const char* section, const char* key,
                                          const char* default_value, char* output,
                                          unsigned int output_size, const char* file_name);

// As the wide one; prints "Error " and a newline when the file cannot be opened.
int CpZvGetPrivateProfileIntA(const char* section, const char* key, int default_value,
                              const char* file_name);

// As the wide one.
int CpZvWritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                   const char* file_name);

#endif  // ZVISP_SETTINGS_PROFILE_H_
