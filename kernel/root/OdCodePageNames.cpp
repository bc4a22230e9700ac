#include "OdCodePageNames.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cctype>

namespace {

// Where ICU knows a name for more than one converter, the name chosen here is the one
// that means the Windows table (cp936 rather than windows-936, which ICU also gives to
// an IBM table). GB2312 and KSC5601 map to their Windows supersets: the bytes of the
// older sets decode the same, and files labelled so often hold the superset's characters.
constexpr OdCodePageName kNames[] = {
    {"ANSI_874", "windows-874"},
    {"ANSI_932", "windows-932"},
    {"ANSI_936", "cp936"},
    {"ANSI_949", "ms949"},
    {"ANSI_950", "ms950"},
    {"ANSI_1250", "windows-1250"},
    {"ANSI_1251", "windows-1251"},
    {"ANSI_1252", "windows-1252"},
    {"ANSI_1253", "windows-1253"},
    {"ANSI_1254", "windows-1254"},
    {"ANSI_1255", "windows-1255"},
    {"ANSI_1256", "windows-1256"},
    {"ANSI_1257", "windows-1257"},
    {"ANSI_1258", "windows-1258"},
    {"DOS437", "ibm-437"},
    {"DOS850", "ibm-850"},
    {"DOS852", "ibm-852"},
    {"DOS855", "ibm-855"},
    {"DOS857", "ibm-857"},
    {"DOS860", "ibm-860"},
    {"DOS861", "ibm-861"},
    {"DOS863", "ibm-863"},
    {"DOS864", "ibm-864"},
    {"DOS865", "ibm-865"},
    {"DOS866", "ibm-866"},
    {"DOS869", "ibm-869"},
    {"DOS932", "windows-932"},
    {"DOS936", "cp936"},
    {"DOS949", "ms949"},
    {"DOS950", "ms950"},
    {"MACINTOSH", "macintosh"},
    {"MAC-ROMAN", "macintosh"},
    {"ISO8859-1", "ISO-8859-1"},
    {"ISO8859-2", "ISO-8859-2"},
    {"ISO8859-3", "ISO-8859-3"},
    {"ISO8859-4", "ISO-8859-4"},
    {"ISO8859-5", "ISO-8859-5"},
    {"ISO8859-6", "ISO-8859-6"},
    {"ISO8859-7", "ISO-8859-7"},
    {"ISO8859-8", "ISO-8859-8"},
    {"ISO8859-9", "ISO-8859-9"},
    {"ISO8859-10", "ISO-8859-10"},
    {"BIG5", "ms950"},
    {"GB2312", "cp936"},
    {"KSC5601", "ms949"},
    {"ASCII", "US-ASCII"},
    {"UTF8", "UTF-8"},
    {"UTF-8", "UTF-8"},
};

std::string_view trimBlanks(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())))
    text.remove_prefix(1);
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
    text.remove_suffix(1);
  return text;
}

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

// ICU's own name of the converter an alias denotes, or "" when ICU knows no such name.
std::string converterName(const std::string& alias) {
  UErrorCode status = U_ZERO_ERROR;
  const char* name = ucnv_getAlias(alias.c_str(), 0, &status);
  return (U_SUCCESS(status) && name) ? name : "";
}

}  // namespace

std::string odDxfCodePageToIcu(std::string_view dxfName) {
  dxfName = trimBlanks(dxfName);
  for (const auto& entry : kNames)
    if (equalsIgnoringAsciiCase(dxfName, entry.dxfName)) return entry.icuName;
  return "";
}

std::string odIcuToDxfCodePage(std::string_view icuName) {
  std::string wanted = converterName(std::string(trimBlanks(icuName)));
  if (wanted.empty()) return "";
  for (const auto& entry : kNames)
    if (converterName(entry.icuName) == wanted) return entry.dxfName;
  return "";
}

std::span<const OdCodePageName> odCodePageNames() {
  return kNames;
}
