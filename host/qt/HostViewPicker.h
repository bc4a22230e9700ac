#pragma once

#include <cstdint>
#include <vector>

#include "HostViewScene.h"

// Which entities of a scene a person points at: the one nearest a point, or those a window
// holds or crosses. Reads the scene's geometry as drawn (blocks placed by their inserts, arcs
// and ellipses as fine chords, text as the box of its line, filled areas by their inside) and
// leaves out what is not drawn (entities and primitives on layers off or frozen).
//
// Construction lines run both ways from their base point, rays one way. The scene is not owned and
// must outlive the picker; nothing here throws but std::bad_alloc.
class HostViewPicker {
 public:
  explicit HostViewPicker(const HostViewScene& scene) : scene_(scene) {}

  // The slot of the drawn entity nearest `at` whose geometry is within `tolerance` drawing
  // units of it (inside a filled area counts as on it); -1 when none is.
  std::int64_t pick(const HostViewVec& at, double tolerance) const;
  // The slots of the drawn entities that lie wholly inside `window`, or with `crossing` also
  // those whose geometry meets it, in slot order. `tolerance` (drawing units) is how finely
  // curves are followed.
  std::vector<std::uint32_t> select(const HostViewBox& window, bool crossing,
                                    double tolerance) const;
  // How far `at` is from the drawn geometry of entity `slot` (0 inside a filled area); +inf
  // when nothing of it is drawn.
  double distance(std::uint32_t slot, const HostViewVec& at, double tolerance) const;

 private:
  const HostViewScene& scene_;
};
