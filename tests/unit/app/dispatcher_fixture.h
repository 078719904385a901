// SPDX-License-Identifier: MIT
//
// The dispatcher with recording plug-ins in a directory of the test's own, and what they received.
#ifndef ZVISP_TESTS_UNIT_APP_DISPATCHER_FIXTURE_H_
#define ZVISP_TESTS_UNIT_APP_DISPATCHER_FIXTURE_H_

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "app/execute_process.h"
#include "plugin/zeroed.h"
#include "support/files.h"
#include "support/printed.h"
#include "support/record_bytes.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

class DispatcherTest : public testing::Test {
 protected:
  DispatcherTest() {
    GivenDirectory(m_scratch / "calls");
    setenv("ZVISP_RECORD_DIR", (m_scratch / "calls").c_str(), 1);
    WithIspPlugin("recording_isp");
    WithSignPlugin("recording_sign");
  }
  ~DispatcherTest() override {
    for (const std::string& name : m_wishes) {
      unsetenv(name.c_str());
    }
    unsetenv("ZVISP_RECORD_DIR");
    g_funcReturnProg = nullptr;
    g_funcShowMsg = nullptr;
    g_funcZvGetHubDev = nullptr;
    g_funcBeforeIspCall = nullptr;
  }

  // Copies, so that each test has libraries that nobody else has loaded.
  void WithIspPlugin(const std::string& name) { Copy(name, IspPluginPath()); }
  void WithSignPlugin(const std::string& name) { Copy(name, SignPluginPath()); }
  void WithoutIspPlugin() { std::filesystem::remove(IspPluginPath()); }
  void WithoutSignPlugin() { std::filesystem::remove(SignPluginPath()); }
  std::string IspPluginPath() const { return m_scratch / "isp.dylib"; }
  std::string SignPluginPath() const { return m_scratch / "sign.dylib"; }

  // What a call answers from now on.
  void GivenAnswer(const std::string& call, const std::string& number) {
    GivenWish("RESULT_" + call, number);
  }
  // Any other wish of support/recording_plugin.h.
  void GivenWish(const std::string& name, const std::string& value) {
    m_wishes.push_back("ZVISP_RECORD_" + name);
    setenv(m_wishes.back().c_str(), value.c_str(), 1);
  }

  // Programming with a software signature that is verified before.
  void GivenSoftwareSignature(std::uint32_t mode) {
    m_setting->enumActionType = CP_ISPTOOL_ACTION_ISP;
    m_setting->enumIspMode = ISP_MODE_NORMAL;
    m_setting->enumDigitalSignatureType = CP_DIGITAL_SIGNATURE_SW;
    m_sign_args->enumSwMode = mode;
  }

  std::uint32_t Execute() {
    // Plug-ins are named from the executable's directory; enough steps up lead to the root.
    const std::string up = "../../../../../../../../../../../../../../..";
    CCpZvString isp;
    isp = up + IspPluginPath();
    CCpZvString sign;
    sign = up + SignPluginPath();
    std::uint32_t result = 0;
    m_out = Printed(
        [&] { result = ExecuteProcess(m_setting.get(), m_sign_args.get(), isp, sign, m_device); });
    return result;
  }
  std::uint32_t Execute(std::uint32_t action) {
    m_setting->enumActionType = action;
    return Execute();
  }

  // The lines of the calls so far.
  std::vector<std::string> Calls() const {
    const std::string log = m_scratch / "calls/calls.txt";
    std::vector<std::string> calls;
    if (!FileExists(log)) return calls;
    std::istringstream lines(ReadWholeFile(log));
    for (std::string line; std::getline(lines, line);) {
      calls.push_back(line);
    }
    return calls;
  }
  void ForgetCalls() const { std::filesystem::remove(m_scratch / "calls/calls.txt"); }

  // What the call of a number, from 0, received.
  RecordBytes Record(int call) const { return RecordBytes(Received(call, ".record")); }
  std::string Key(int call) const { return Received(call, ".key"); }

  static bool IsLoaded(const std::string& library) {
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
  }

  ScratchDir m_scratch;
  zvisp::ZeroedPtr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> m_setting =
      zvisp::MakeZeroed<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
  zvisp::ZeroedPtr<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS> m_sign_args =
      zvisp::MakeZeroed<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS>();
  void* m_device = nullptr;
  std::string m_out;

 private:
  static void Copy(const std::string& name, const std::string& to) {
    std::filesystem::copy_file(std::string(ZVISP_TEST_PLUGIN_DIR) + "/" + name + ".dylib", to,
                               std::filesystem::copy_options::overwrite_existing);
  }
  std::string Received(int call, const char* kind) const {
    return ReadWholeFile(m_scratch / ("calls/" + std::to_string(call) + kind));
  }

  std::vector<std::string> m_wishes;
};

#endif  // ZVISP_TESTS_UNIT_APP_DISPATCHER_FIXTURE_H_
