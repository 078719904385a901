// SPDX-License-Identifier: MIT
#include "line/worker/library_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <vector>

namespace line {

namespace {

enum class Format { kElf, kMachO };

struct Machine {
  Format format;
  std::uint32_t number;
  const char* name;
};

// clang-format off
constexpr Machine kMachines[] = {
  // format         number      name
  {Format::kElf,    3,          "i386"},
  {Format::kElf,    8,          "MIPS"},
  {Format::kElf,    21,         "ppc64"},
  {Format::kElf,    22,         "s390x"},
  {Format::kElf,    40,         "ARM (32 bits)"},
  {Format::kElf,    62,         "x86-64"},
  {Format::kElf,    183,        "arm64"},
  {Format::kElf,    243,        "RISC-V"},
  {Format::kMachO,  7,          "i386"},
  {Format::kMachO,  12,         "ARM (32 bits)"},
  {Format::kMachO,  0x01000007, "x86-64"},
  {Format::kMachO,  0x0100000C, "arm64"},
};
// clang-format on

#ifdef __APPLE__
constexpr Format kOwnFormat = Format::kMachO;
constexpr const char* kOwnFormatName = "a Mach-O";
#else
constexpr Format kOwnFormat = Format::kElf;
constexpr const char* kOwnFormatName = "an ELF";
#endif
#if defined(__x86_64__)
constexpr const char* kOwnMachine = "x86-64";
#elif defined(__aarch64__)
constexpr const char* kOwnMachine = "arm64";
#elif defined(__riscv)
constexpr const char* kOwnMachine = "RISC-V";
#elif defined(__powerpc64__)
constexpr const char* kOwnMachine = "ppc64";
#elif defined(__s390x__)
constexpr const char* kOwnMachine = "s390x";
#elif defined(__arm__)
constexpr const char* kOwnMachine = "ARM (32 bits)";
#elif defined(__i386__)
constexpr const char* kOwnMachine = "i386";
#else
#error "Name this machine here and in kMachines."
#endif

constexpr std::uint32_t kElfSharedObject = 3;
constexpr std::uint32_t kMachODylib = 6;
constexpr std::uint32_t kMachOBundle = 8;
// A fat file of more slices is a Java class, whose files begin with the same number.
constexpr std::uint32_t kMostSlices = 16;

// What the first bytes say.
struct Look {
  Format format = Format::kElf;
  bool is_library = true;
  std::vector<std::string> machines;
};

// Numbers of either byte order at offsets that may be beyond the end.
class Bytes {
 public:
  Bytes(std::string_view bytes, bool big_endian) : m_bytes(bytes), m_big_endian(big_endian) {}

  std::uint32_t Number(std::size_t offset, std::size_t size) const {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
      const std::size_t at = offset + (m_big_endian ? i : size - 1 - i);
      number = number << 8 | (at < m_bytes.size() ? static_cast<std::uint8_t>(m_bytes[at]) : 0U);
    }
    return number;
  }

 private:
  std::string_view m_bytes;
  bool m_big_endian;
};

std::string NameOfMachine(Format format, std::uint32_t number) {
  const auto* const row = std::find_if(
      std::begin(kMachines), std::end(kMachines),
      [&](const Machine& one) { return one.format == format && one.number == number; });
  return row == std::end(kMachines) ? "machine " + std::to_string(number) : row->name;
}

Look LookAtElf(std::string_view bytes) {
  constexpr char kBigEndian = 2;
  const Bytes numbers(bytes, bytes.size() > 5 && bytes[5] == kBigEndian);
  return {Format::kElf,
          numbers.Number(16, 2) == kElfSharedObject,
          {NameOfMachine(Format::kElf, numbers.Number(18, 2))}};
}

Look LookAtMachO(std::string_view bytes, bool big_endian) {
  const Bytes numbers(bytes, big_endian);
  const std::uint32_t type = numbers.Number(12, 4);
  return {Format::kMachO,
          type == kMachODylib || type == kMachOBundle,
          {NameOfMachine(Format::kMachO, numbers.Number(4, 4))}};
}

// Several Mach-O files in one, each for a machine of its own.
std::optional<Look> LookAtFat(std::string_view bytes) {
  constexpr std::size_t kHeader = 8;
  constexpr std::size_t kSlice = 20;
  const Bytes numbers(bytes, true);
  const std::uint32_t slices = numbers.Number(4, 4);
  if (slices == 0 || slices > kMostSlices) return std::nullopt;
  Look look = {Format::kMachO, true, {}};
  for (std::size_t i = 0; i < slices; ++i) {
    look.machines.push_back(NameOfMachine(Format::kMachO, numbers.Number(kHeader + i * kSlice, 4)));
  }
  return look;
}

std::optional<Look> LookAtBytes(std::string_view bytes) {
  if (bytes.starts_with("\177ELF")) return LookAtElf(bytes);
  switch (Bytes(bytes, true).Number(0, 4)) {
    case 0xFEEDFACE:
    case 0xFEEDFACF:
      return LookAtMachO(bytes, true);
    case 0xCEFAEDFE:
    case 0xCFFAEDFE:
      return LookAtMachO(bytes, false);
    case 0xCAFEBABE:
      return LookAtFat(bytes);
    default:
      return std::nullopt;
  }
}

// The first bytes; nothing, with errno set, when they cannot be read.
std::optional<std::string> FirstBytes(const std::string& path) {
  // Without waiting for the other end of a FIFO.
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return std::nullopt;
  std::string bytes(512, '\0');
  const ssize_t got = read(file, bytes.data(), bytes.size());
  const int failure = errno;
  close(file);
  errno = failure;
  if (got < 0) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(got));
  return bytes;
}

LoadProblem Unreadable(int failure) {
  if (failure == ENOENT || failure == ENOTDIR) {
    return {"is missing", "put the plug-in there, or give the right path"};
  }
  return {std::string("cannot be read: ") + std::strerror(failure),
          failure == EISDIR ? "give the path of the file" : "change the rights of the file"};
}

}  // namespace

std::optional<LoadProblem> LookAtLibraryFile(const std::string& path) {
  const std::optional<std::string> bytes = FirstBytes(path);
  if (!bytes) return Unreadable(errno);
  const std::optional<Look> look = LookAtBytes(*bytes);
  const std::string own = std::string(kOwnFormatName) + " library for " + kOwnMachine;
  if (!look) return LoadProblem{"is not a library", "put " + own + " in its place"};
  const char* const format = look->format == Format::kElf ? "an ELF" : "a Mach-O";
  if (!look->is_library) {
    return LoadProblem{std::string("is ") + format + " file, but not a library",
                       "link it as a shared library"};
  }
  const auto& machines = look->machines;
  const bool fits = look->format == kOwnFormat &&
                    std::find(machines.begin(), machines.end(), kOwnMachine) != machines.end();
  if (fits) return std::nullopt;
  return LoadProblem{std::string("is ") + format + " library for " + Listed(machines) +
                         ", but this program needs " + own,
                     std::string("build it for ") + kOwnMachine +
                         (look->format == kOwnFormat ? "" : " and this system")};
}

}  // namespace line
