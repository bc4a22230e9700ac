#pragma once

#include <memory>

#include "HostTextCatalogue.h"
#include "OdString.h"

// Translates the texts that modules show (button labels, words such as "ByLayer").
// With no catalogue, or for a text the catalogue lacks, a text is its own translation.
class HostTranslation {
 public:
  OdString translate(const OdString& text) const;
  // Installs a catalogue (null removes it).
  void setCatalogue(std::shared_ptr<const HostTextCatalogue> catalogue) {
    catalogue_ = std::move(catalogue);
  }

 private:
  std::shared_ptr<const HostTextCatalogue> catalogue_;
};
