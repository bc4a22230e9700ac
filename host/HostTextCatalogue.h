#pragma once

#include <optional>

#include "OdString.h"

// A translation of interface texts into one language: the one place to plug a catalogue
// (a file of messages, a translation service) into the host (HostTranslation::setCatalogue).
class HostTextCatalogue {
 public:
  virtual ~HostTextCatalogue() = default;
  // The translation of `text`, or nullopt when the catalogue has none.
  virtual std::optional<OdString> lookup(const OdString& text) const = 0;
};
