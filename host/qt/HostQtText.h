#pragma once

#include <QString>

#include "OdString.h"

// Text crossing between the host (OdString, wide characters) and Qt (QString, UTF-16).
inline QString toQString(const OdString& text) {
  return QString::fromStdWString(text.str());
}

inline OdString toOdString(const QString& text) {
  return OdString(text.toStdWString());
}

// Host texts may carry Windows line ends; a widget shows plain line breaks.
inline QString plainLines(const OdString& text) {
  QString out = toQString(text);
  out.remove(QLatin1Char('\r'));
  return out;
}
