#pragma once

#include <QFont>
#include <QString>
#include <unordered_map>
#include <vector>

#include "HostViewGeometry.h"

class DxfObject;

// What a text style gives the texts that use it.
struct HostViewTextStyle {
  QString family;          // font family for the style's font file ("" for the default)
  double widthFactor = 1;  // 41
  double oblique = 0;      // 50, radians
  double fixedHeight = 0;  // 40; 0 when the style leaves the height to the text
};

// Lays TEXT, ATTRIB, ATTDEF and MTEXT entities out as lines of HostViewText, in the entity's
// own plane (the caller maps them by the extrusion): the text (control codes such as %%d, %%c,
// %%p and %%u turned into what they show, MTEXT formatting codes removed, \P and line breaks
// splitting lines), its height (the style's fixed height when it has one), width factor,
// rotation, obliquing and alignment (TEXT's 72/73 with its second point, MTEXT's attachment
// point 71 and line spacing), measured with the font's metrics so that the origin each line
// gets is its baseline's left end. Empty for an entity with no text or unreadable tags; never
// throws for bad tags. Keeps a cache of font metrics; one layout per thread.
class HostViewTextLayout {
 public:
  // TEXT, ATTRIB, ATTDEF (the ATTDEF's default value is laid out).
  std::vector<HostViewText> text(const DxfObject& tags, const HostViewTextStyle& style);
  std::vector<HostViewText> mtext(const DxfObject& tags, const HostViewTextStyle& style);

  // The font family to draw a style's font file with: a font installed on this system whose
  // name matches the file's base name, else a monospace family for shape fonts named like
  // "txt" or "monotxt" and the default sans serif otherwise.
  static QString familyFor(const QString& fontFile);
  // The advance of `text` at cap height 1 and width factor 1 in `family`.
  double advance(const QString& text, const QString& family);
  // How far the descenders of `family` reach below the baseline at cap height 1.
  double descent(const QString& family);

 private:
  // The font of `family` at a size large enough to measure with, made once.
  const QFont& font(const QString& family);

  std::unordered_map<QString, QFont> fonts_;
};
