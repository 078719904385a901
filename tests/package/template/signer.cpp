// SPDX-License-Identifier: MIT
// A signature plug-in in C++ that uses its runtime: containers, exceptions, streams.
#include <plugin/zvisp_plugin.h>

#include <iostream>
#include <map>
#include <stdexcept>
#include <string>

namespace {

std::map<std::string, int> g_requests;

void Sign(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS request) {
  ++g_requests[request.szFwFile];
  if (request.enumActionType == 0) throw std::runtime_error("no signature type");
}

}  // namespace

int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args) {
  try {
    Sign(*args);
    return 1;
  } catch (const std::exception& refusal) {
    std::cout << "C++ signer: " << refusal.what() << std::endl;
    return 0;
  }
}

int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS*, char*) {
  return 0;
}
