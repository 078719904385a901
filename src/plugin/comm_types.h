// SPDX-License-Identifier: MIT
//
// The types that the communication interface passes through.
//
// Their layouts and values belong to the communication libraries; the tool looks into none of
// them. Each is declared only as far as it takes to hand it on.
#ifndef ZVISP_PLUGIN_COMM_TYPES_H_
#define ZVISP_PLUGIN_COMM_TYPES_H_

#include <cstdint>

// Description of an interface, filled by the library; always passed by pointer.
struct STRUCT_COMM_INFO;

// Passed by value: room for any record of up to 16 bytes of integers. All such records travel in
// the same two registers on every platform of the tool, so a library's own record, shorter or not,
// arrives whole.
struct STRUCT_AUXMODE_STRUCT {
  std::uint64_t ulOpaque[2] = {};
};

// Passed by value, with the same room.
struct STRUCT_WAITING_STRUCT {
  std::uint64_t ulOpaque[2] = {};
};

// The register values that a proxy restores, all zero by default. It never leaves the proxy.
struct STRUCT_REG_FORMER_VALUE {
  std::uint64_t ulOpaque[2] = {};
};

// Enumerations of 32 bits; their values are the libraries'.
enum STRUCT_ENUM_COMM_ID : std::int32_t;              // an interface
enum STRUCT_ENUM_CPU_TYPE : std::int32_t;             // a processor of the chip
enum STRUCT_ENUM_DEBUG_TYPE : std::int32_t;           // a debug mode
enum STRUCT_ENUM_IIC_MASTER_SPEED : std::int32_t;     // a speed of the chip's I2C master
enum STRUCT_ENUM_INC_TYPE : std::int32_t;             // how a block's address moves on
enum STRUCT_ENUM_NEW_ZORVANEUSB_MODE : std::int32_t;  // a mode of the USB bridge
enum STRUCT_ENUM_SPECIAL_COMM_TYPE : std::int32_t;    // a kind of special link
enum STRUCT_ENUM_SYS_DEVICE_CMD_TYPE : std::int32_t;  // a command to a system device

#endif  // ZVISP_PLUGIN_COMM_TYPES_H_
