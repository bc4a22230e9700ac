#pragma once

#include <cstdint>

// The state bits of an StError (StError::flags). The check manager counts and skips errors by
// them, plug-ins set them, and the values are stored as they are, so they never change.
namespace st {

// A fix was applied to the error; the plug-in sets it when fixError succeeds.
inline constexpr std::uint32_t kStErrorFixed = 0x02;
// The plug-in has fixes for the error; automatic fixing is tried only when it is set.
inline constexpr std::uint32_t kStErrorFixable = 0x10;
// The error counts as ignored when it is not fixed.
inline constexpr std::uint32_t kStErrorCountedAsIgnored = 0x20;
// The object carries an ignore mark: the error is shown only when ignored problems are to be
// shown, and counts as ignored when it is not fixed.
inline constexpr std::uint32_t kStErrorIgnored = 0x40;
// A problem to report even when it is not fixable; fixed, it counts as fixed by hand.
inline constexpr std::uint32_t kStErrorAlwaysReported = 0x80;

}  // namespace st
