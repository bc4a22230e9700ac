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

// Lays TEXT, ATTRIB, ATTDEF and MTEXT entities out as lines of HostViewText: TEXT and
// attributes in the entity's own plane (the caller maps them by the extrusion), MTEXT in the
// drawing's coordinates seen from above (it is written in them). The text (control codes such as
// %%d, %%c,
// %%p and %%u turned into what they show, MTEXT formatting codes removed, \P and line breaks
// splitting lines), its height (the style's fixed height when it has one), width factor and
// obliquing (the text's own 41 and 51 when it gives them, else the style's), rotation and
// alignment (TEXT's 72/73 with its second point, MTEXT's attachment point 71, wrapping width
// 41 and line spacing 44), measured with the font's metrics so that the origin each line gets
// is its baseline's left end. Backwards and upside-down texts (71) are laid out as ordinary
// ones. Empty for an entity with no text or unreadable tags; never throws for bad tags. Keeps
// a cache of fonts and of the advances measured; one layout per thread (familyFor may be called
// from any thread).
class HostViewTextLayout {
 public:
  // TEXT, ATTRIB, ATTDEF (the ATTDEF's default value is laid out, its tag when it has none;
  // ATTRIB and ATTDEF read their vertical alignment from 74). A multiline attribute (an
  // embedded object after 101) is laid out from its embedded text as MTEXT is, and comes back
  // in its plane too.
  std::vector<HostViewText> text(const DxfObject& tags, const HostViewTextStyle& style);
  // MTEXT, and the embedded text of multiline attributes: its insertion point (10/20/30) and
  // x-axis direction (11/21/31) are the drawing's coordinates, and so are the lines' origins
  // and directions (z dropped); the caller does not map them.
  std::vector<HostViewText> mtext(const DxfObject& tags, const HostViewTextStyle& style);

  // The font family to draw a style's font file with: a font installed on this system whose
  // name matches the file's base name (any folder and extension, case and spaces ignored),
  // else for the big fonts of East Asian scripts an installed font with their glyphs, else a
  // monospace family for shape fonts named like "txt" or "monotxt" and the default sans serif
  // otherwise; "" for no file. Cached.
  static QString familyFor(const QString& fontFile);
  // The advance of `text` at cap height 1 and width factor 1 in `family`.
  double advance(const QString& text, const QString& family);
  // How far the descenders of `family` reach below the baseline at cap height 1.
  double descent(const QString& family);

 private:
  struct Face {
    QFont font;  // at a size large enough to measure with
    double cap;  // its cap height in pixels
    // Advances already measured: a drawing repeats its texts and words, and shaping them is
    // most of the cost of laying a text out. Bounded; measured afresh once full.
    std::unordered_map<QString, double> advances;
  };
  // The face of `family`, made once.
  Face& face(const QString& family);

  std::unordered_map<QString, Face> faces_;
};
