// libFuzzer entry point for the DXF file layer: every input goes through the same load,
// write-back and conversion checks as the regression test over earlier findings. A fault
// prints what went wrong and aborts, so libFuzzer keeps the input.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "DxfRoundTripCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string fault =
      DxfRoundTripCheck::check(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!fault.empty()) {
    std::fprintf(stderr, "dxf round trip fault: %s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
