#include "HostTranslation.h"

OdString HostTranslation::translate(const OdString& text) const {
  if (catalogue_) {
    if (auto translated = catalogue_->lookup(text)) return *translated;
  }
  return text;
}
