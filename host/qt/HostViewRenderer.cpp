#include "HostViewRenderer.h"

#include <QPainter>
#include <algorithm>
#include <bit>
#include <cmath>

namespace {
using Kind = HostViewPrimitive::Kind;

// Blocks nested deeper than this are not followed (a drawing that nests that deep is broken).
constexpr int kMaxDepth = 32;

// What an insert hands the contents of its block: where they go on the device and what "by
// block" and layer "0" mean inside.
struct Context {
  HostViewAffine toDevice;
  std::uint32_t blockColour = HostViewColour::kForeground;  // RGB or kForeground
  std::int32_t blockLinetype = HostViewLinetype::kContinuous;
  std::int32_t blockLayer = -1;  // -1 at the top level
  int depth = 0;
};

// One paint: the scene walked through one view into the tessellator.
struct Pass {
  const HostViewScene& scene;
  const HostViewRenderer::Options& options;
  HostViewTessellator& out;
  HostViewRenderer::Stats& stats;
  QRectF device;
  QRgb foreground;
  QRgb background;
  QPainter* painter = nullptr;
  bool override = false;            // every stroke in the highlight colour
  std::vector<std::int32_t> stack;  // blocks being drawn, against self-reference

  // A colour the background would swallow becomes the foreground.
  QRgb visible(std::uint32_t rgb) const {
    if (override) return options.highlight.rgb();
    if (rgb == HostViewColour::kBackground) return background | 0xFF000000u;
    if (options.monochrome) return foreground;
    if (!HostViewColour::isRgb(rgb)) return foreground;
    const int dr = qRed(rgb) - qRed(background), dg = qGreen(rgb) - qGreen(background),
              db = qBlue(rgb) - qBlue(background);
    return dr * dr + dg * dg + db * db < 60 * 60 ? foreground : (rgb | 0xFF000000u);
  }
  std::int32_t layerOf(const HostViewPrimitive& p, const Context& ctx) const {
    return ctx.blockLayer >= 0 && p.layer == scene.layerZero() ? ctx.blockLayer : p.layer;
  }
  // RGB or kForeground.
  std::uint32_t colourOf(std::uint32_t colour, std::int32_t layer, const Context& ctx) const {
    if (colour == HostViewColour::kByLayer) return scene.layers()[layer].colour;
    if (colour == HostViewColour::kByBlock) return ctx.blockColour;
    return colour;
  }
  std::int32_t linetypeOf(const HostViewPrimitive& p, std::int32_t layer,
                          const Context& ctx) const {
    if (p.linetype == HostViewLinetype::kByLayer) return scene.layers()[layer].linetype;
    if (p.linetype == HostViewLinetype::kByBlock) return ctx.blockLinetype;
    return p.linetype;
  }
  bool layerShown(std::int32_t layer) const {
    return layer >= 0 && static_cast<std::size_t>(layer) < scene.layers().size() &&
           scene.layers()[layer].visible;
  }
  QRectF deviceBox(const HostViewBox& box, const HostViewAffine& m) const {
    const HostViewBox b = m.map(box);
    return QRectF(QPointF(b.minX, b.minY), QPointF(b.maxX, b.maxY));
  }

  void entity(std::uint32_t slot) {
    const HostViewEntity& e = scene.entities()[slot];
    if (!e.alive || e.count == 0 || !layerShown(e.layer)) return;
    ++stats.entitiesVisited;
    Context ctx;
    ctx.toDevice = toDevice;
    const HostViewGeometry& g = scene.geometry();
    if (e.unbounded) {
      const HostViewPrimitive& p = g.primitives[e.first];
      const std::int32_t layer = layerOf(p, ctx);
      const HostViewVec& a = g.points[p.first];
      const HostViewVec& b = g.points[p.first + 1];
      out.infiniteLine(QPointF(toDevice.map(a).x, toDevice.map(a).y),
                       QPointF(toDevice.map(b).x, toDevice.map(b).y),
                       (p.flags & HostViewPrimitive::kClosed) != 0, pen(p, layer, ctx));
      ++stats.primitivesDrawn;
      return;
    }
    const QRectF box = deviceBox(e.extents, toDevice);
    if (box.width() < 1 && box.height() < 1) {
      const HostViewPrimitive& p = g.primitives[e.first];
      out.dot(box.center(), visible(colourOf(p.colour, layerOf(p, ctx), ctx)));
      ++stats.entitiesAsDots;
      return;
    }
    for (std::uint32_t i = e.first; i < e.first + e.count; ++i) primitive(g.primitives[i], ctx);
  }

  HostViewTessellator::Pen pen(const HostViewPrimitive& p, std::int32_t layer,
                               const Context& ctx) const {
    HostViewTessellator::Pen pen;
    pen.colour = visible(colourOf(p.colour, layer, ctx));
    const std::int32_t linetype = linetypeOf(p, layer, ctx);
    if (linetype >= 0 && static_cast<std::size_t>(linetype) < scene.patterns().size() &&
        !scene.patterns()[linetype].dashes.empty()) {
      pen.pattern = &scene.patterns()[linetype];
      pen.scale = p.linetypeScale * scene.linetypeScale() * ctx.toDevice.scale();
    }
    return pen;
  }

  void primitive(const HostViewPrimitive& p, const Context& ctx) {
    const std::int32_t layer = layerOf(p, ctx);
    if (!layerShown(layer)) return;
    const HostViewGeometry& g = scene.geometry();
    ++stats.primitivesDrawn;
    switch (p.kind) {
      case Kind::Polyline:
        out.polyline(&g.points[p.first], p.count, (p.flags & HostViewPrimitive::kClosed) != 0,
                     (p.flags & HostViewPrimitive::kBulges) ? &g.bulges[p.first] : nullptr,
                     (p.flags & HostViewPrimitive::kWidths) ? &g.widths[p.first] : nullptr,
                     ctx.toDevice, pen(p, layer, ctx));
        break;
      case Kind::Polygon:
        // A wipeout hides what came before it: that is drawn first.
        if (p.colour == HostViewColour::kBackground && !override) out.flush(*painter, 1);
        out.polygon(&g.points[p.first], &g.ringSizes[p.extra], p.rings, ctx.toDevice,
                    pen(p, layer, ctx));
        break;
      case Kind::Ellipse:
        out.ellipse(g.points[p.first], g.points[p.first + 1], g.reals[p.extra],
                    g.reals[p.extra + 1], g.reals[p.extra + 2], ctx.toDevice, pen(p, layer, ctx));
        break;
      case Kind::Point: {
        const HostViewVec at = ctx.toDevice.map(g.points[p.first]);
        out.dot(QPointF(at.x, at.y), visible(colourOf(p.colour, layer, ctx)));
        break;
      }
      case Kind::Text:
        out.text(g.texts[p.extra], ctx.toDevice, visible(colourOf(p.colour, layer, ctx)));
        break;
      case Kind::Insert:
        insert(p, layer, ctx);
        break;
    }
  }

  void insert(const HostViewPrimitive& p, std::int32_t layer, const Context& ctx) {
    const HostViewInsert& in = scene.geometry().inserts[p.extra];
    if (in.block < 0 || static_cast<std::size_t>(in.block) >= scene.blocks().size()) return;
    if (ctx.depth >= kMaxDepth || std::find(stack.begin(), stack.end(), in.block) != stack.end())
      return;
    const HostViewBlock& block = scene.blocks()[in.block];
    if (block.count == 0 || block.extents.empty()) return;
    Context inner;
    inner.blockColour = colourOf(p.colour, layer, ctx);
    inner.blockLinetype = linetypeOf(p, layer, ctx);
    inner.blockLayer = layer;
    inner.depth = ctx.depth + 1;
    stack.push_back(in.block);
    for (std::uint32_t i = 0; i < in.columns; ++i) {
      for (std::uint32_t j = 0; j < in.rows; ++j) {
        HostViewAffine cell = in.transform;
        cell.tx += i * in.columnStep.x + j * in.rowStep.x;
        cell.ty += i * in.columnStep.y + j * in.rowStep.y;
        inner.toDevice = ctx.toDevice * cell;
        const QRectF box = deviceBox(block.extents, inner.toDevice);
        if (!box.intersects(device) && !(box.width() == 0 || box.height() == 0)) continue;
        if (box.width() < 1 && box.height() < 1) {
          if (device.contains(box.center())) out.dot(box.center(), visible(inner.blockColour));
          continue;
        }
        for (std::uint32_t k = block.first; k < block.first + block.count; ++k)
          primitive(scene.geometry().primitives[k], inner);
      }
    }
    stack.pop_back();
  }

  HostViewAffine toDevice;
};
}  // namespace

HostViewRenderer::Stats HostViewRenderer::paint(QPainter& painter, const HostViewScene& scene,
                                                const HostViewTransform& view,
                                                const Options& options) {
  Stats stats;
  const QRectF device(QPointF(0, 0), view.device);
  painter.save();
  painter.fillRect(device, options.background);
  painter.setRenderHint(QPainter::Antialiasing, options.antialias);
  painter.setRenderHint(QPainter::TextAntialiasing, true);
  const QRgb foreground = options.background.lightness() < 128 ? 0xFFFFFFFFu : 0xFF000000u;
  Pass pass{scene,    options, tessellator_, stats, device, foreground, options.background.rgb(),
            &painter, false,   {},           {}};
  const double s = view.scale;
  pass.toDevice = {s,
                   0,
                   0,
                   -s,
                   view.device.width() / 2 - s * view.centre.x,
                   view.device.height() / 2 + s * view.centre.y};

  tessellator_.reset(view.device);
  scene.index().query(view.visible(), hits_);
  // In the drawing's order, so that what overlaps (fills, wipeouts) stacks as drawn: sorted,
  // or through a bitmap of the slotCount when most of the drawing is in view.
  const std::size_t slotCount = scene.entities().size();
  if (hits_.size() * 16 < slotCount) {
    std::sort(hits_.begin(), hits_.end());
  } else {
    seen_.assign((slotCount + 63) / 64, 0);
    for (std::uint32_t slot : hits_)
      if (slot < slotCount) seen_[slot / 64] |= std::uint64_t(1) << (slot % 64);
    hits_.clear();
    for (std::size_t word = 0; word < seen_.size(); ++word)
      for (std::uint64_t bits = seen_[word]; bits; bits &= bits - 1)
        hits_.push_back(static_cast<std::uint32_t>(word * 64 + std::countr_zero(bits)));
  }
  // A large drawing's arrays do not fit the caches, and each entity's primitive and points are
  // found through the one before: fetched some entities ahead, each step once the step before
  // has arrived.
  const HostViewEntity* entities = scene.entities().data();
  const HostViewGeometry& g = scene.geometry();
  const std::size_t n = hits_.size();
  for (std::size_t k = 0; k < n; ++k) {
    if (k + 16 < n && hits_[k + 16] < slotCount) __builtin_prefetch(&entities[hits_[k + 16]]);
    if (k + 8 < n && hits_[k + 8] < slotCount) {
      const HostViewEntity& ahead = entities[hits_[k + 8]];
      if (ahead.first < g.primitives.size()) __builtin_prefetch(&g.primitives[ahead.first]);
    }
    if (k + 4 < n && hits_[k + 4] < slotCount) {
      const HostViewEntity& ahead = entities[hits_[k + 4]];
      if (ahead.count > 0 && ahead.first < g.primitives.size() &&
          g.primitives[ahead.first].first < g.points.size())
        __builtin_prefetch(&g.points[g.primitives[ahead.first].first]);
    }
    const std::uint32_t slot = hits_[k];
    if (slot < slotCount && !entities[slot].unbounded) pass.entity(slot);
  }
  for (std::uint32_t slot : scene.unboundedEntities()) pass.entity(slot);
  tessellator_.flush(painter, 1);

  if (options.highlighted && !options.highlighted->empty()) {
    pass.override = true;
    const Stats before = stats;
    for (std::uint32_t slot : *options.highlighted)
      if (slot < scene.entities().size()) pass.entity(slot);
    stats = before;  // highlights are drawn again, not found again
    tessellator_.flush(painter, 3);
  }
  painter.restore();
  return stats;
}
