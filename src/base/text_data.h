// SPDX-License-Identifier: MIT
//
// Byte tables written as text: words and numbers out of C-like initialiser text, EDID blocks,
// hexadecimal and comma lists, checksums; and, for the tools that work with such tables, a writer
// of text files and a splitter of command lines.
//
// Failures are results: nothing here prints. Texts with a length are read up to that length and
// not beyond; texts without one are NUL-terminated. Outputs belong to the caller.
#ifndef ZVISP_BASE_TEXT_DATA_H_
#define ZVISP_BASE_TEXT_DATA_H_

#include <string>
#include <vector>

#include "base/zv_string.h"

// Takes the next token of text[position..length) and moves the position past it. Returns its kind:
//   0 only blanks up to the end of the text, a comment without an end, or any other character
//   1 a word of ASCII letters, digits and "_", copied to `word`
//   2 a comment: "/*" with its "*/", or "//" and the rest of the line without its newline
//   3 a newline: one CR or one LF     4 ","     5 "{"     6 "}"
//
// `word` has room for `capacity` wide units and is never written past that; other kinds leave it
// alone. A shorter word is followed by zeros. A word of exactly `capacity` units is stored whole,
// without a terminating zero, because callers with 256 units pass words of 256. A longer one is
// taken whole, too, but stored cut to capacity - 1 units and the terminating zero.
int GetNextWord(const wchar_t* text, unsigned int& position, unsigned int length, wchar_t* word,
                unsigned int capacity);

// Reads the next value of a list and moves the position past it and its separator (a comma, a
// newline or "}"). A value is a "0x" number, or decimal digits, where a leading 0 means octal, or
// else a name that `definitions` defines (null for none). Comments, newlines, commas and "{" before
// it are skipped, and so are further words, comments and "{" after it. Returns
//   1 found; `value` is stored, which no other result does
//   0 the position is at the end; the word is not a value; or a token of kind 0 came before the
//     value and was not the last of the text, or came between the value and its separator (blanks
//     up to the end of the text are such a token)
//   6 the text ended before a value, whatever its last token was, or "}" came first
int FindNextBytes(const wchar_t* text, unsigned int& position, unsigned int length,
                  const wchar_t* definitions, unsigned int* value);

// Looks up the first word that equals `name` in text such as "#define NAME 0x1F" and reads the word
// directly after it: a "0x" number (0 when a character is not a digit) or decimal digits, octal
// with a leading 0. Returns 1 with the value stored, or 0.
int GetDefineValue(const wchar_t* name, const wchar_t* definitions, unsigned int* value);

// Converts a list of values to bytes; what is not a value is skipped. Returns their number; 0 when
// there are none or more than `capacity`, when a value is above 255, or when the bytes do not sum
// up to 0 modulo 256, as those of an EDID do. After a failure the output may be partly filled.
unsigned int EDIDToBin(const wchar_t* text, unsigned int length, unsigned char* output,
                       unsigned int capacity);

// The value of exactly `count` hexadecimal digits; 0 when one character is not a digit, as at the
// end of a text that is too short. Of more than 8 digits, those at distance 8 are added up.
unsigned int HexStrToInt(const wchar_t* digits, unsigned char count);
unsigned int HexStrToInt(const CCpZvString& digits, unsigned char count);

// Converts numbers between commas, as StringtoInt reads them, to bytes. Returns how many were
// stored; stops at `maximum` unless that is 0, which means that the output has room for all. Stops
// with 0 at a piece that is not a number from 0 to 255; the bytes before it stay stored.
unsigned int ConvetStringToByteArry(const std::string& text, unsigned char* output,
                                    unsigned int maximum);

// The sum of the bytes, modulo 2^32.
unsigned int CalculateByteChecksum(const unsigned char* data, unsigned int length);
// The sum of the little-endian 16-bit words, modulo 2^16; an odd last byte is added on its own.
unsigned short CalculateWordChecksum(const unsigned char* data, unsigned int length);

// Writes the text in the encoding of the environment's locale, to a new file or, when `append` is
// not 0, to the end of an existing one. With length 0 it writes the text and a terminating
// zero byte. Otherwise it writes length * 4 + 1 bytes: what fits of the text, then zeros.
// Returns 1; 0 when the file does not open, which leaves the process in the environment's locale.
int CpZvSaveAnsiFile(const CCpZvString& path, const CCpZvString& text, unsigned int length,
                     int append);

// Splits a command line at blanks; text between double quotes, without them, is one argument or
// part of one. Returns 1; 0, with `arguments` untouched, for an odd number of quotes or for two
// quotes with nothing between them. A quote that starts the line is never an opening one, and of
// two quoted texts in one argument only the first loses its quotes and returns.
int ParseCommandLineParameter(std::vector<std::string>& arguments, const std::string& line);

#endif  // ZVISP_BASE_TEXT_DATA_H_
