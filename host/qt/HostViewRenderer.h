#pragma once

#include <QColor>
#include <cstdint>
#include <unordered_set>
#include <vector>

#include "HostViewScene.h"
#include "HostViewTessellator.h"
#include "HostViewTransform.h"

class QPainter;

// Draws a scene through a view transform with a QPainter (a widget, an image, a PDF). Visits
// only the entities the spatial index finds in the visible box, and draws detail too small to
// see as a dot or not at all: an entity or an insert whose box spans under a pixel is one dot,
// text under a few pixels high is a line along its baseline, arcs get as many chords as their
// size on screen needs, linetype patterns are drawn only where a pattern spans enough pixels,
// and everything is clipped to the device before it reaches the painter (a construction line
// is infinite; a drawing far from the origin zoomed far in must not overflow the rasteriser).
//
// Entities are painted in the drawing's order, so that fills stack as drawn and a wipeout
// (HostViewColour::kBackground) hides what came before it.
//
// Colours resolve here: by layer from the (effective) layer, by block from the insert, colour
// 7 and colours too close to the background as the foreground. Layers off or frozen are left
// out, whole inserts on them too. Holds no state between paints but reusable buffers; not
// thread-safe.
class HostViewRenderer {
 public:
  struct Options {
    QColor background = QColor(33, 40, 48);
    bool antialias = false;
    // Entities (scene slots) drawn highlighted: over everything else, thicker, in the
    // highlight colour.
    const std::unordered_set<std::uint32_t>* highlighted = nullptr;
    QColor highlight = QColor(80, 160, 255);
    // Draw everything in the foreground colour (a monochrome plot).
    bool monochrome = false;
  };
  struct Stats {
    std::size_t entitiesVisited = 0;  // found in the visible box
    std::size_t entitiesAsDots = 0;   // too small: one dot
    std::size_t primitivesDrawn = 0;
  };

  // Fills the device with the background, then draws. The painter's own transform is left as
  // it was found.
  Stats paint(QPainter& painter, const HostViewScene& scene, const HostViewTransform& view,
              const Options& options);

 private:
  // Implementation's own; see the .cpp.
  std::vector<std::uint32_t> hits_;
  std::vector<std::uint64_t> seen_;  // a bit per entity slot, to put many hits in order
  HostViewTessellator tessellator_;
};
