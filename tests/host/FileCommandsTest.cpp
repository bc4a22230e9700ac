// The host's file commands over real drawings: they do their work with no module loaded, and
// with a module that exports the silent check they run it first, for their own bit only.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "HostSilentCheck.h"
#include "HostTestSupport.h"

namespace {

namespace fs = std::filesystem;
using hosttest::count;
using hosttest::QuietHost;

}  // namespace
