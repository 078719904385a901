// SPDX-License-Identifier: MIT
//
// The reference signer as the tool meets it: the built library, opened by its path and called with
// records. Keys and certificates come from tests/data/signer and are copied to a directory of the
// test's own, readable by their owner only. All of them were made for these tests.
#ifndef ZVISP_TESTS_UNIT_SIMULATOR_SIGNER_SIGNER_FIXTURE_H_
#define ZVISP_TESTS_UNIT_SIMULATOR_SIGNER_SIGNER_FIXTURE_H_

#include <dlfcn.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "plugin/digital_sign_args.h"
#include "support/files.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

class Signer : public testing::Test {
 protected:
  Signer() {
    GivenFile(m_directory / "fw.bin", "firmware");
    m_library = dlopen(ZVISP_SIGNER_FILE, RTLD_NOW);
    if (m_library == nullptr) throw std::runtime_error(dlerror());
    m_sign = reinterpret_cast<int (*)(const Args*)>(dlsym(m_library, "SignFwExport"));
    m_verify =
        reinterpret_cast<int (*)(const Args*, char*)>(dlsym(m_library, "VerifySignatureExport"));
  }
  ~Signer() override { dlclose(m_library); }

  // A request on "fw.bin" and "fw.sig". Type 1 is software, 2 hardware.
  Args Request(std::uint32_t type, std::uint32_t mode) const {
    Args args;
    args.enumSignatureType = type;
    args.enumSwMode = type == 1 ? mode : 0;
    args.enumHwMode = type == 2 ? mode : 0;
    Put(args.szFwFile, m_directory / "fw.bin");
    Put(args.szSignatureFile, m_directory / "fw.sig");
    return args;
  }
  // A complete request to sign, in mode 3, and the one that verifies what it made.
  Args SignRequest() const {
    Args args = Request(1, 3);
    Put(args.szSignKeyFile, Key("sign.key"));
    return args;
  }
  Args VerifyRequest() const {
    Args args = Request(1, 3);
    Put(args.szVerifyKeyFile, Key("sign.pub"));
    return args;
  }

  static void Put(char (&field)[260], const std::string& text) {
    if (text.size() >= sizeof field) throw std::length_error(text);
    std::strcpy(field, text.c_str());
  }

  // The path of the test's own copy of a file of the test data.
  std::string Key(const std::string& name) const {
    GivenFile(m_directory / name, ReadWholeFile(ZVISP_SIGNER_DATA_DIR "/" + name));
    chmod((m_directory / name).c_str(), 0600);
    return m_directory / name;
  }

  // Each call keeps what it printed for Printed().
  bool Sign(const Args& args) {
    testing::internal::CaptureStdout();
    return Keep(m_sign(&args));
  }
  bool Verify(const Args& args, char* device_key = nullptr) {
    testing::internal::CaptureStdout();
    return Keep(m_verify(&args, device_key));
  }

  // What was printed, the test's directory written as "@/".
  const std::string& Printed() const { return m_printed; }

  ScratchDir m_directory;
  int (*m_sign)(const Args*) = nullptr;
  int (*m_verify)(const Args*, char*) = nullptr;

 private:
  bool Keep(int answer) {
    std::fflush(stdout);
    m_printed = testing::internal::GetCapturedStdout();
    const std::string directory = m_directory / "";
    for (std::size_t at = 0; (at = m_printed.find(directory)) != std::string::npos;) {
      m_printed.replace(at, directory.size(), "@/");
    }
    return answer != 0;
  }

  void* m_library = nullptr;
  std::string m_printed;
};

// A key as GetKeyFromFlash gives it: text with zeros behind it.
struct DeviceKey {
  explicit DeviceKey(const std::string& text) { text.copy(bytes, sizeof bytes); }
  char bytes[1220] = {};
};

#endif  // ZVISP_TESTS_UNIT_SIMULATOR_SIGNER_SIGNER_FIXTURE_H_
