#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "HostViewGeometry.h"

// A spatial index over boxes named by a number (the scene's entity index): which boxes meet a
// query box. Built in one pass for a whole drawing (a packed tree, sorted by tiles), then kept
// current one box at a time: an inserted or moved box waits in a small side list, a removed one
// is forgotten at once, and the tree is built again when the side list grows past a share of
// the whole. Unbounded boxes (rays, construction lines) are answered by every query.
//
// Values only; not thread-safe; no operation throws except std::bad_alloc.
class HostViewIndex {
 public:
  struct Item {
    std::uint32_t id;
    HostViewBox box;
  };

  // Replaces everything with `items` (ids unique; an empty box is not indexed).
  void build(std::vector<Item> items);
  // Adds `id` with `box`, replacing any box it had; an empty box removes it.
  void insert(std::uint32_t id, const HostViewBox& box);
  void remove(std::uint32_t id);
  void clear();

  // Calls `visit` once for every id whose box meets `query`, in no particular order.
  void query(const HostViewBox& query, const std::function<void(std::uint32_t)>& visit) const;
  // The same, into `out` (cleared first): the renderer's form, with no call per hit.
  void query(const HostViewBox& query, std::vector<std::uint32_t>& out) const;

  std::size_t size() const;
  // The box of everything indexed but the unbounded boxes (empty when nothing is).
  HostViewBox bounds() const;

 private:
  // Implementation's own; see the .cpp.
  struct Node {
    HostViewBox box;
    std::uint32_t first = 0, count = 0;  // children nodes, or items at the leaf level
    bool leaf = false;
  };
  std::vector<Item> items_;          // the tree's items, leaf order
  std::vector<Node> nodes_;          // level by level, root last
  std::vector<Item> pending_;        // inserted since the build
  std::vector<std::uint8_t> state_;  // per id: 0 absent, 1 in the tree, 2 pending, 3 unbounded
  std::vector<std::uint32_t> unbounded_;
  std::size_t removedInTree_ = 0;
};
