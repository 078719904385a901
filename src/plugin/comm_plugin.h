// SPDX-License-Identifier: MIT
//
// CZvComm: the proxy of a communication library, which talks to the display controller over I2C,
// DDC/CI, USB bridges, AUX and the like.
//
// An ISP plug-in that is handed a CZvComm* calls it by slot of the virtual table, so the order of
// the virtual functions is a contract with libraries that were built elsewhere. The operations,
// slot by slot with their parameters, are listed in plugin/comm_operations.inc.
//
// Without a library an operation answers its "unloaded" value: 6 where it has a status or a count,
// 0 from the getters of a mode, a slave address or a speed, and nothing where it has no result.
// Pointers are handed on unchanged; the proxy keeps and frees none. Destroying the proxy does
// not unload the library; FreeCommDllFile does.
#ifndef ZVISP_PLUGIN_COMM_PLUGIN_H_
#define ZVISP_PLUGIN_COMM_PLUGIN_H_

#include <cstdint>
#include <type_traits>

#include "plugin/comm_types.h"
#include "plugin/export.h"

class CZvComm {
 protected:
  // Short names of the list, also for a class that overrides its operations.
  using u8 = std::uint8_t;
  using u16 = std::uint16_t;
  using u32 = std::uint32_t;
  using CommId = STRUCT_ENUM_COMM_ID;
  using CommName = wchar_t[256];
  using Cpu = STRUCT_ENUM_CPU_TYPE;
  using DebugType = STRUCT_ENUM_DEBUG_TYPE;
  using Inc = STRUCT_ENUM_INC_TYPE;
  using SysCmd = STRUCT_ENUM_SYS_DEVICE_CMD_TYPE;

 private:
  // A library may leave anything above a narrow result, so that is read as a whole register.
  template <typename Returns>
  using Register =
      std::conditional_t<std::is_same_v<Returns, u8> || std::is_same_v<Returns, u16>, u32, Returns>;

 public:
  // The library's calls, one for each operation and named like it.
  struct Exports;

  CZvComm() { Init(); }
  virtual ~CZvComm();
  CZvComm(const CZvComm&) = delete;
  CZvComm& operator=(const CZvComm&) = delete;

  // Loads the library at a path after FreeCommDllFile, which a derived class may have overridden.
  // Returns 1, or 0 with nothing loaded: when the library cannot be opened, after printing
  // "Failed to open libaray <path> error:<reason>" and a newline to standard error; silently when
  // it lacks one of the exports.
  virtual int LoadCommDllFile(wchar_t* path);

  // Closes the library, if one is loaded, and unbinds every call.
  virtual void FreeCommDllFile();

#define OPERATION(slot, look_up, Returns, unloaded, Method, Parameters, Arguments) \
  virtual Returns Method Parameters;
#include "plugin/comm_operations.inc"

  struct Exports {
#define OPERATION(slot, look_up, Returns, unloaded, Method, Parameters, Arguments) \
  zvisp::Export<Register<Returns> Parameters, unloaded> Method;
#include "plugin/comm_operations.inc"
  };

  // Forgets the library and every call without closing it.
  void Init();

 private:
  [[maybe_unused]] STRUCT_REG_FORMER_VALUE m_reg_former_value;
  void* m_library = nullptr;
  Exports m_exports;
};

#endif  // ZVISP_PLUGIN_COMM_PLUGIN_H_
