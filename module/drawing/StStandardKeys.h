#pragma once

// The names under which the module stores its data in a drawing. They are read back by other
// programs that open the same files, so they never change.
namespace st {

// The standards dictionary: in the named-object dictionary it holds the list of associated
// standards files; in an object's extension dictionary it holds the object's ignore mark.
inline constexpr const wchar_t* kStandardKey = L"AcStStandard";
// The xrecord of an ignore mark inside an object's standards dictionary.
inline constexpr const wchar_t* kFlagsKey = L"AcStFlags";

}  // namespace st
