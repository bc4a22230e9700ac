#pragma once

// Internal to TD_Root: the locale collation behind OdString::collate and iCollate. Creating
// an ICU collator takes far longer than comparing with one, so each thread keeps the
// collators of the current locale and builds new ones only when the locale changes.

#include <string>
#include <string_view>

class OdCollatorCache {
 public:
  // Compares in the collation order of the current locale: <0, 0, >0. With `ignoreCase`
  // the comparison is at secondary strength (accents count, case does not). When ICU
  // cannot build any collator at all, falls back to code point order.
  static int compare(std::wstring_view a, std::wstring_view b, bool ignoreCase);

  // Sets the locale by name ("de_DE", "sv-SE", "de_DE.UTF-8"); the empty name returns to
  // the environment (LC_ALL, then LC_COLLATE, then LANG). Takes effect in every thread at
  // its next comparison.
  static void setLocale(const std::string& name);
  // The ICU name of the locale in effect; "root" for C, POSIX and an unset environment.
  static std::string localeName();
};
