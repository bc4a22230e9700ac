// TEMPORARY: linear stand-ins so the library links until the index and the readers land.
#include <QFontMetricsF>

#include "DxfObject.h"
#include "HostViewHatch.h"
#include "HostViewIndex.h"
#include "HostViewSpline.h"
#include "HostViewTags.h"
#include "HostViewTextLayout.h"

void HostViewIndex::build(std::vector<Item> items) {
  clear();
  for (const Item& i : items) insert(i.id, i.box);
}
void HostViewIndex::insert(std::uint32_t id, const HostViewBox& box) {
  remove(id);
  if (!box.empty()) pending_.push_back({id, box});
}
void HostViewIndex::remove(std::uint32_t id) {
  std::erase_if(pending_, [&](const Item& i) { return i.id == id; });
}
void HostViewIndex::clear() {
  pending_.clear();
}
void HostViewIndex::query(const HostViewBox& q,
                          const std::function<void(std::uint32_t)>& visit) const {
  for (const Item& i : pending_)
    if (i.box.intersects(q)) visit(i.id);
}
void HostViewIndex::query(const HostViewBox& q, std::vector<std::uint32_t>& out) const {
  out.clear();
  for (const Item& i : pending_)
    if (i.box.intersects(q)) out.push_back(i.id);
}
std::size_t HostViewIndex::size() const {
  return pending_.size();
}
HostViewBox HostViewIndex::bounds() const {
  HostViewBox b;
  for (const Item& i : pending_) b.add(i.box);
  return b;
}

std::vector<HostViewVec> HostViewSpline::points(const DxfObject& tags) {
  std::vector<HostViewVec> out;
  for (std::size_t i = 0; i < tags.size(); ++i)
    if (tags.code(i) == 10 && i + 1 < tags.size()) out.push_back({tags.real(i), tags.real(i + 1)});
  return out;
}

bool HostViewHatch::read(const DxfObject& tags, Boundary& out) {
  out.solid = HostViewTags::integerOr(tags, 70, 0) == 1;
  std::vector<HostViewVec> ring;
  for (std::size_t i = 0; i < tags.size(); ++i)
    if (tags.code(i) == 10 && i + 1 < tags.size() && tags.code(i + 1) == 20 && ring.size() < 64)
      ring.push_back({tags.real(i), tags.real(i + 1)});
  if (ring.size() > 1) ring.erase(ring.begin());  // the elevation point
  if (ring.size() < 3) return false;
  out.rings.push_back(ring);
  return true;
}

std::vector<HostViewText> HostViewTextLayout::text(const DxfObject& tags,
                                                   const HostViewTextStyle& style) {
  HostViewText t;
  const std::size_t at = tags.find(1);
  if (at == DxfObject::npos) return {};
  t.text = QString::fromStdWString(tags.text(at).str());
  t.origin = {HostViewTags::realOr(tags, 10, 0), HostViewTags::realOr(tags, 20, 0)};
  t.height = style.fixedHeight > 0 ? style.fixedHeight : HostViewTags::realOr(tags, 40, 1);
  t.direction = HostViewTags::realOr(tags, 50, 0) * M_PI / 180;
  t.widthFactor = HostViewTags::realOr(tags, 41, style.widthFactor);
  t.oblique = style.oblique;
  t.family = style.family;
  t.advance = advance(t.text, t.family) * t.height * t.widthFactor;
  return {t};
}
std::vector<HostViewText> HostViewTextLayout::mtext(const DxfObject& tags,
                                                    const HostViewTextStyle& style) {
  auto lines = text(tags, style);
  for (auto& l : lines) l.origin.y -= l.height;
  return lines;
}
QString HostViewTextLayout::familyFor(const QString&) {
  return {};
}
double HostViewTextLayout::advance(const QString& text, const QString& family) {
  QFont f(family);
  f.setPixelSize(100);
  QFontMetricsF m(f);
  return m.horizontalAdvance(text) / m.capHeight();
}
