// libFuzzer entry point for the configuration reader: every input goes through the checks of
// ConfigReadCheck, as in the regression test over earlier findings. A fault prints what went
// wrong and aborts, so libFuzzer keeps the input.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "ConfigReadCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string fault =
      ConfigReadCheck::check(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!fault.empty()) {
    std::fprintf(stderr, "configuration reader fault: %s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
