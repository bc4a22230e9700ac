#pragma once

// The code-page names a DXF file writes in its $DWGCODEPAGE header variable ("ANSI_1252",
// "DOS850", "ansi_936", ...) and the ICU converter names that OdString::fromCodePage and
// toCodePage take. Only files before R2007 depend on the code page: later ones are UTF-8
// whatever the variable says.

#include <span>
#include <string>
#include <string_view>

struct OdCodePageName {
  const char* dxfName;  // as written by convention, upper case
  const char* icuName;  // opens with ucnv_open
};

// The ICU converter name for a DXF code-page name, matched without regard to case or
// surrounding blanks; the empty string when the name is unknown or has no converter here
// (Johab: "ANSI_1361", "JOHAB"). The caller decides the fallback; windows-1252 is the usual
// one, as most files without a usable code page were written on western systems.
std::string odDxfCodePageToIcu(std::string_view dxfName);

// The DXF name for a code page given by any ICU name or alias of it ("cp1252",
// "windows-1252", "ibm-5348_P100-1997" all give "ANSI_1252"); the ANSI_ form where both an
// ANSI_ and a DOS name denote the converter. The empty string when no DXF name fits.
std::string odIcuToDxfCodePage(std::string_view icuName);

// Every pair known, in the order odIcuToDxfCodePage prefers.
std::span<const OdCodePageName> odCodePageNames();
