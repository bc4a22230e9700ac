#include "HostViewTextLayout.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QStringList>
#include <cmath>
#include <exception>
#include <mutex>
#include <numbers>

#include "HostQtText.h"
#include "HostViewTags.h"

namespace {
constexpr double kPi = std::numbers::pi;
// Baselines of MTEXT lines are this many text heights apart at line spacing factor 1.
constexpr double kLinePitch = 5.0 / 3.0;
// Fonts are measured at this pixel size, large enough that rounding does not show.
constexpr int kMeasureSize = 256;
// Advances remembered per face at most (a drawing of more distinct texts measures the rest).
constexpr std::size_t kMaxAdvances = 1 << 16;

// The tags [begin, end) of an entity whose values are read. An ATTRIB or MTEXT may carry an
// embedded object after a 101 tag, whose codes repeat the entity's own: the entity's values
// are those before it, the embedded object's those after it.
class OwnTags {
 public:
  OwnTags(const DxfObject& tags, std::size_t begin, std::size_t end)
      : tags_(tags), begin_(begin), end_(std::min(end, tags.size())) {}
  static OwnTags entity(const DxfObject& tags) { return {tags, 0, tags.find(101)}; }

  std::size_t begin() const { return begin_; }
  std::size_t end() const { return end_; }
  std::size_t find(int code) const {
    const std::size_t at = tags_.find(code, begin_);
    return at < end_ ? at : DxfObject::npos;
  }
  bool has(int code) const { return find(code) != DxfObject::npos; }
  double real(int code, double dflt) const {
    const std::size_t at = find(code);
    if (at == DxfObject::npos) return dflt;
    const double value = tags_.real(at);
    return std::isfinite(value) ? value : dflt;
  }
  long long integer(int code, long long dflt) const {
    const std::size_t at = find(code);
    return at == DxfObject::npos ? dflt : tags_.integer(at);
  }
  QString text(int code) const {
    const std::size_t at = find(code);
    return at == DxfObject::npos ? QString() : toQString(tags_.text(at));
  }
  bool point(int xCode, HostViewVec& p) const {
    p = {real(xCode, NAN), real(xCode + 10, NAN)};
    return std::isfinite(p.x) && std::isfinite(p.y);
  }

 private:
  const DxfObject& tags_;
  std::size_t begin_, end_;
};

// %%d, %%c, %%p and %%nnn as the characters they stand for; %%u and %%o (underline and
// overline toggles) removed; %%% a percent sign. Anything else is left as written.
QString withControlCodes(const QString& text) {
  if (!text.contains(QLatin1String("%%"))) return text;
  QString out;
  out.reserve(text.size());
  const qsizetype n = text.size();
  for (qsizetype i = 0; i < n; ++i) {
    if (text[i] != QLatin1Char('%') || i + 2 >= n || text[i + 1] != QLatin1Char('%')) {
      out += text[i];
      continue;
    }
    const QChar code = text[i + 2].toLower();
    if (code == QLatin1Char('d')) {
      out += QChar(0x00B0);
    } else if (code == QLatin1Char('c')) {
      out += QChar(0x2300);
    } else if (code == QLatin1Char('p')) {
      out += QChar(0x00B1);
    } else if (code == QLatin1Char('%')) {
      out += QLatin1Char('%');
    } else if (code == QLatin1Char('u') || code == QLatin1Char('o')) {
      // a toggle: nothing shown
    } else if (code.isDigit() && i + 4 < n && text[i + 3].isDigit() && text[i + 4].isDigit()) {
      const int value = text.mid(i + 2, 3).toInt();
      if (value > 0) out += QChar(value);
      i += 2;
    } else {
      out += text[i];
      continue;
    }
    i += 2;
  }
  return out;
}

// A stacked fraction's text between \S and ';': "a^b", "a/b" or "a#b" shown as "a/b", or as
// the one part there is (a superscript "2^").
QString stacked(const QString& body) {
  qsizetype split = -1;
  QString top, bottom;
  for (qsizetype i = 0; i < body.size(); ++i) {
    const QChar c = body[i];
    if (c == QLatin1Char('\\') && i + 1 < body.size()) {
      (split < 0 ? top : bottom) += body[++i];
    } else if (split < 0 &&
               (c == QLatin1Char('^') || c == QLatin1Char('/') || c == QLatin1Char('#'))) {
      split = i;
    } else {
      (split < 0 ? top : bottom) += c;
    }
  }
  top = top.trimmed();
  bottom = bottom.trimmed();
  if (top.isEmpty()) return bottom;
  if (bottom.isEmpty()) return top;
  return top + QLatin1Char('/') + bottom;
}

// MTEXT's text without its formatting codes: paragraph and column breaks as line feeds,
// escaped characters as themselves, codes with an argument up to their ';' removed, groups'
// braces removed.
QString plainMText(const QString& text) {
  QString out;
  out.reserve(text.size());
  const qsizetype n = text.size();
  qsizetype i = 0;
  while (i < n) {
    const QChar c = text[i];
    if (c == QLatin1Char('{') || c == QLatin1Char('}') || c == QLatin1Char('\r')) {
      ++i;
      continue;
    }
    if (c == QLatin1Char('\t')) {
      out += QLatin1Char(' ');
      ++i;
      continue;
    }
    if (c != QLatin1Char('\\')) {
      out += c;
      ++i;
      continue;
    }
    if (i + 1 >= n) break;
    const char16_t k = text[i + 1].unicode();
    switch (k) {
      case u'P':
      case u'N':
      case u'X':
        out += QLatin1Char('\n');
        i += 2;
        break;
      case u'~':
        out += QChar(0x00A0);
        i += 2;
        break;
      case u'L':
      case u'l':
      case u'O':
      case u'o':
      case u'K':
      case u'k':
        i += 2;
        break;
      case u'A':
      case u'C':
      case u'c':
      case u'H':
      case u'W':
      case u'Q':
      case u'T':
      case u'F':
      case u'f':
      case u'p': {
        // Without its ';' the code is taken to be just the two characters, so that a broken
        // code does not swallow the rest of the text.
        const qsizetype end = text.indexOf(QLatin1Char(';'), i + 2);
        i = end < 0 ? i + 2 : end + 1;
        break;
      }
      case u'S': {
        qsizetype end = i + 2;
        while (end < n && text[end] != QLatin1Char(';'))
          end += text[end] == QLatin1Char('\\') ? 2 : 1;
        out += stacked(text.mid(i + 2, std::min(end, n) - (i + 2)));
        i = end + 1;
        break;
      }
      case u'M':
        // A double-byte character the file's code page could not give: one unknown character.
        if (i + 7 < n && text[i + 2] == QLatin1Char('+')) {
          out += QChar(0xFFFD);
          i += 8;
        } else {
          out += text[i + 1];
          i += 2;
        }
        break;
      default:
        // \\, \{, \} and any code not known here: the character itself.
        out += text[i + 1];
        i += 2;
        break;
    }
  }
  return out;
}

double capHeightOf(const QFontMetricsF& metrics) {
  const double cap = metrics.capHeight();
  return cap > 0 ? cap : metrics.ascent() * 0.72;
}

QString lettersOf(const QString& name) {
  QString out;
  for (QChar c : name)
    if (c.isLetterOrNumber()) out += c.toLower();
  return out;
}

QString resolvedFamily(QFont::StyleHint hint, const char* family) {
  QFont font(QString::fromLatin1(family));
  font.setStyleHint(hint);
  if (hint == QFont::Monospace) font.setFixedPitch(true);
  return QFontInfo(font).family();
}
}  // namespace

HostViewTextLayout::Face& HostViewTextLayout::face(const QString& family) {
  auto found = faces_.find(family);
  if (found != faces_.end()) return found->second;
  QFont font;
  if (!family.isEmpty()) font.setFamilies({family});
  font.setPixelSize(kMeasureSize);
  font.setHintingPreference(QFont::PreferNoHinting);
  const double cap = capHeightOf(QFontMetricsF(font));
  return faces_.emplace(family, Face{font, cap, {}}).first->second;
}

double HostViewTextLayout::advance(const QString& text, const QString& family) {
  Face& f = face(family);
  auto found = f.advances.find(text);
  if (found != f.advances.end()) return found->second;
  const double advance = QFontMetricsF(f.font).horizontalAdvance(text) / f.cap;
  if (f.advances.size() < kMaxAdvances) f.advances.emplace(text, advance);
  return advance;
}

double HostViewTextLayout::descent(const QString& family) {
  const Face& f = face(family);
  return QFontMetricsF(f.font).descent() / f.cap;
}

QString HostViewTextLayout::familyFor(const QString& fontFile) {
  static std::mutex mutex;
  static std::unordered_map<QString, QString> cache;
  const QString key = fontFile.trimmed().toLower();
  if (key.isEmpty()) return QString();
  const std::lock_guard<std::mutex> lock(mutex);
  auto found = cache.find(key);
  if (found != cache.end()) return found->second;

  // The base name of the file, whatever folder and extension it was written with.
  QString base = key.mid(std::max(key.lastIndexOf(QLatin1Char('/')), key.lastIndexOf('\\')) + 1);
  const qsizetype dot = base.lastIndexOf(QLatin1Char('.'));
  if (dot > 0) base.truncate(dot);
  const QString wanted = lettersOf(base);

  QString family;
  const QStringList families = QFontDatabase::families();
  for (const QString& f : families) {
    if (!wanted.isEmpty() && lettersOf(f) == wanted) {
      family = f;
      break;
    }
  }
  if (family.isEmpty()) {
    // Big fonts for Chinese and other East Asian scripts want a font that has their glyphs.
    static const char* const kEastAsian[] = {"gbcbig", "chineset", "hztxt",   "bigfont", "extfont",
                                             "kanji",  "whgtxt",   "whgdtxt", "hanzi"};
    bool eastAsian = false;
    for (const char* name : kEastAsian) eastAsian |= base.startsWith(QLatin1String(name));
    if (eastAsian) {
      for (const QString& f : families) {
        if (f.contains(QLatin1String("CJK")) || f.contains(QLatin1String("WenQuanYi")) ||
            f.contains(QLatin1String("AR PL")) ||
            f.contains(QLatin1String("Droid Sans Fallback"))) {
          family = f;
          break;
        }
      }
    }
  }
  if (family.isEmpty()) {
    const bool monospace =
        base == QLatin1String("txt") || base.startsWith(QLatin1String("monotxt"));
    family = monospace ? resolvedFamily(QFont::Monospace, "monospace")
                       : resolvedFamily(QFont::SansSerif, "sans-serif");
  }
  cache.emplace(key, family);
  return family;
}

namespace {
// Multiline text from the tags `own`: MTEXT itself, or the text embedded in a multiline
// attribute. In the drawing's coordinates seen from above, or `inPlane`, in the plane's.
std::vector<HostViewText> multiline(HostViewTextLayout& layout, const DxfObject& tags,
                                    const OwnTags& own, const HostViewTextStyle& style,
                                    bool inPlane) {
  std::vector<HostViewText> out;
  // The text comes in chunks: every 3 in order, then the 1.
  QString raw;
  for (std::size_t i = own.begin(); i < own.end(); ++i)
    if (tags.code(i) == 3) raw += toQString(tags.text(i));
  raw += own.text(1);
  const QStringList paragraphs = withControlCodes(plainMText(raw)).split(QLatin1Char('\n'));

  // The insertion point and the x-axis direction (11/21/31) are the drawing's coordinates;
  // without a direction, 50 turns the plane's x axis. Lines stack along the plane's normal
  // crossed with that direction: downwards as read, whichever side the plane is seen from.
  const HostViewTags::Plane plane = HostViewTags::Plane::of(tags, 30);
  const double insert[3] = {own.real(10, NAN), own.real(20, NAN), own.real(30, 0)};
  if (!std::isfinite(insert[0]) || !std::isfinite(insert[1])) return out;
  const double rotation = own.real(50, 0) * kPi / 180;
  double x[3], axis[3] = {own.real(11, 0), own.real(21, 0), own.real(31, 0)};
  for (int i = 0; i < 3; ++i)
    x[i] = std::cos(rotation) * plane.ax[i] + std::sin(rotation) * plane.ay[i];
  const double off = axis[0] * plane.n[0] + axis[1] * plane.n[1] + axis[2] * plane.n[2];
  for (int i = 0; i < 3; ++i) axis[i] -= off * plane.n[i];  // only its part in the plane
  const double length = std::hypot(axis[0], axis[1], axis[2]);
  if (length > 1e-12)
    for (int i = 0; i < 3; ++i) x[i] = axis[i] / length;
  const double y[3] = {plane.n[1] * x[2] - plane.n[2] * x[1], plane.n[2] * x[0] - plane.n[0] * x[2],
                       plane.n[0] * x[1] - plane.n[1] * x[0]};
  // Where the lines go, in the coordinates asked for.
  auto project = [&](const double(&v)[3]) {
    if (!inPlane) return HostViewVec{v[0], v[1]};
    return HostViewVec{v[0] * plane.ax[0] + v[1] * plane.ax[1] + v[2] * plane.ax[2],
                       v[0] * plane.ay[0] + v[1] * plane.ay[1] + v[2] * plane.ay[2]};
  };
  const HostViewVec at = project(insert), along = project(x), up = project(y);
  const double direction = std::hypot(along.x, along.y) > 0 ? std::atan2(along.y, along.x) : 0.0;

  const double height = style.fixedHeight > 0 ? style.fixedHeight : own.real(40, 0);
  if (!(height > 0)) return out;
  const double widthFactor = style.widthFactor > 0 ? style.widthFactor : 1.0;
  const double referenceWidth = own.real(41, 0);
  double spacing = own.real(44, 1);
  if (!(spacing > 0)) spacing = 1;
  const double pitch = kLinePitch * height * spacing;
  long long attachment = own.integer(71, 1);
  if (attachment < 1 || attachment > 9) attachment = 1;
  const long long row = (attachment - 1) / 3, column = (attachment - 1) % 3;

  // Lines: paragraphs, wrapped at the reference width when it has one.
  const double scale = height * widthFactor;
  std::vector<std::pair<QString, double>> lines;  // text, advance in drawing units
  const double space = layout.advance(QStringLiteral(" "), style.family) * scale;
  for (const QString& paragraph : paragraphs) {
    if (!(referenceWidth > 0)) {
      lines.emplace_back(paragraph, layout.advance(paragraph, style.family) * scale);
      continue;
    }
    QString current;
    double currentWidth = 0;
    for (const QString& word : paragraph.split(QLatin1Char(' '))) {
      const double w = layout.advance(word, style.family) * scale;
      if (!current.isEmpty() && currentWidth + space + w > referenceWidth) {
        lines.emplace_back(current, currentWidth);
        current = word;
        currentWidth = w;
      } else if (current.isEmpty() && currentWidth == 0) {
        current = word;
        currentWidth = w;
      } else {
        current += QLatin1Char(' ') + word;
        currentWidth += space + w;
      }
    }
    lines.emplace_back(current, currentWidth);
  }

  // The block from the top of its first line's capitals to its last baseline; its middle is
  // the middle of that, its bottom the last line's descenders.
  const double total = height + pitch * static_cast<double>(lines.size() - 1);
  const double top = row == 0   ? 0
                     : row == 1 ? total / 2
                                : total + layout.descent(style.family) * height;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto& [text, width] = lines[i];
    if (text.trimmed().isEmpty()) continue;
    const double back = column == 0 ? 0 : column == 1 ? width / 2 : width;
    const double above = top - height - pitch * static_cast<double>(i);
    HostViewText line;
    line.text = text;
    line.origin = {at.x - back * along.x + above * up.x, at.y - back * along.y + above * up.y};
    line.direction = direction;
    line.height = height;
    line.widthFactor = widthFactor;
    line.oblique = style.oblique;
    line.advance = width;
    line.family = style.family;
    if (std::isfinite(line.origin.x) && std::isfinite(line.origin.y)) out.push_back(line);
  }
  return out;
}
}  // namespace

std::vector<HostViewText> HostViewTextLayout::mtext(const DxfObject& tags,
                                                    const HostViewTextStyle& style) {
  try {
    return multiline(*this, tags, OwnTags::entity(tags), style, false);
  } catch (const std::exception&) {
    return {};
  }
}

std::vector<HostViewText> HostViewTextLayout::text(const DxfObject& tags,
                                                   const HostViewTextStyle& style) {
  std::vector<HostViewText> out;
  try {
    const OwnTags own = OwnTags::entity(tags);
    const std::string_view type = tags.type();
    const bool attribute = type == "ATTRIB" || type == "ATTDEF";
    // A multiline attribute shows the text of the object embedded in it; a definition whose
    // embedded text is empty shows its tag, as a single line.
    if (attribute && own.end() < tags.size()) {
      const OwnTags embedded(tags, own.end() + 1, tags.size());
      out = multiline(*this, tags, embedded, style, true);
      if (!out.empty()) return out;
    }
    QString raw = own.text(1);
    // A definition without a default value shows its tag.
    if (type == "ATTDEF" && raw.isEmpty()) raw = own.text(2);
    const QString shown = withControlCodes(raw);
    if (shown.trimmed().isEmpty()) return out;

    HostViewVec first, second;
    if (!own.point(10, first)) return out;
    const bool hasSecond = own.point(11, second);
    double height = style.fixedHeight > 0 ? style.fixedHeight : own.real(40, 0);
    if (!(height > 0)) return out;
    double widthFactor = own.has(41) ? own.real(41, 1) : style.widthFactor;
    if (!(widthFactor > 0)) widthFactor = 1;
    const double oblique = own.has(51) ? own.real(51, 0) * kPi / 180 : style.oblique;
    double direction = own.real(50, 0) * kPi / 180;
    const long long horizontal = own.integer(72, 0);
    const long long vertical = own.integer(attribute ? 74 : 73, 0);

    const double unitAdvance = advance(shown, style.family);
    double width = unitAdvance * height * widthFactor;
    HostViewVec anchor = first;
    double along = 0, above = 0;  // the anchor from the baseline's left end
    const double span = hasSecond ? std::hypot(second.x - first.x, second.y - first.y) : 0;
    if ((horizontal == 3 || horizontal == 5) && span > 0) {
      // Aligned keeps the letters' proportions and scales the height; fit stretches them.
      direction = std::atan2(second.y - first.y, second.x - first.x);
      if (unitAdvance > 0) {
        if (horizontal == 3)
          height = span / (unitAdvance * widthFactor);
        else
          widthFactor = span / (unitAdvance * height);
      }
      width = span;
    } else if (horizontal != 0 || vertical != 0) {
      if (hasSecond) anchor = second;
      if (horizontal == 4) {
        along = width / 2;
        above = height / 2;
      } else {
        along = horizontal == 1 ? width / 2 : horizontal == 2 ? width : 0;
        above = vertical == 1   ? -descent(style.family) * height
                : vertical == 2 ? height / 2
                : vertical == 3 ? height
                                : 0;
      }
    }
    const double c = std::cos(direction), s = std::sin(direction);
    HostViewText line;
    line.text = shown;
    line.origin = {anchor.x - along * c + above * s, anchor.y - along * s - above * c};
    line.direction = direction;
    line.height = height;
    line.widthFactor = widthFactor;
    line.oblique = oblique;
    line.advance = width;
    line.family = style.family;
    if (std::isfinite(line.origin.x) && std::isfinite(line.origin.y) && std::isfinite(height) &&
        std::isfinite(width))
      out.push_back(std::move(line));
  } catch (const std::exception&) {
    out.clear();
  }
  return out;
}
