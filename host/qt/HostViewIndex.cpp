#include "HostViewIndex.h"

#include <algorithm>
#include <cmath>

// The tree is packed by sort-tile-recursive loading: the boxes are ordered by the x of their
// centres, cut into vertical slices of about sqrt(n / kFanOut) leaves each, every slice ordered
// by y and cut into leaves of kFanOut. The level above is packed the same way from the leaves'
// boxes, and so on up to one root. Nodes are stored level by level, leaves first, the root
// last; a node's children (or a leaf's items) are one contiguous range.
//
// Items removed from the tree stay in items_ and are filtered by state_ at query time; a box
// given again to an id that is in the tree goes to pending_, and its stale copy in the tree is
// filtered the same way. Both count towards the rebuild threshold.

namespace {
constexpr std::uint32_t kFanOut = 16;
// The side list and the dead entries of the tree may reach this share of the tree (and at
// least kMinSlack) before the tree is built again: a query scans the side list linearly, so it
// must stay small, and a rebuild costs the whole tree, so it must not come on every insert.
constexpr std::size_t kShareDivisor = 16;
constexpr std::size_t kMinSlack = 256;

enum State : std::uint8_t { kAbsent = 0, kInTree = 1, kPending = 2, kUnbounded = 3 };

bool hasNan(const HostViewBox& b) {
  return std::isnan(b.minX) || std::isnan(b.minY) || std::isnan(b.maxX) || std::isnan(b.maxY);
}
bool isUnbounded(const HostViewBox& b) {
  return std::isinf(b.minX) || std::isinf(b.minY) || std::isinf(b.maxX) || std::isinf(b.maxY);
}
// Nothing to index: no point, or a bound that is not a number.
bool unusable(const HostViewBox& b) {
  return hasNan(b) || b.empty();
}

using Key = std::pair<double, std::uint32_t>;

// Puts `keys[first, last)` in groups of `group` (the last may be short) so that every key of a
// group is <= every key of the groups after it; inside a group the order is left alone. That
// is all packing needs, and it costs n log(n / group) against a full sort's n log n.
void groupKeys(std::vector<Key>& keys, std::size_t first, std::size_t last, std::size_t group) {
  while (last - first > group) {
    const std::size_t groups = (last - first + group - 1) / group;
    const std::size_t middle = first + (groups / 2) * group;
    std::nth_element(keys.begin() + static_cast<std::ptrdiff_t>(first),
                     keys.begin() + static_cast<std::ptrdiff_t>(middle),
                     keys.begin() + static_cast<std::ptrdiff_t>(last),
                     [](const Key& l, const Key& r) { return l.first < r.first; });
    groupKeys(keys, first, middle, group);
    first = middle;
  }
}

// Orders `v[first, last)` into groups of `group` by the centres of their boxes in x or in y.
// The centres are gathered into keys first so the selection moves small pairs, not items.
template <class T, class BoxOf>
void groupByCentre(std::vector<T>& v, std::size_t first, std::size_t last, std::size_t group,
                   bool byX, BoxOf boxOf, std::vector<Key>& keys, std::vector<T>& scratch) {
  const std::size_t n = last - first;
  keys.resize(n);
  for (std::size_t i = 0; i < n; ++i) {
    const HostViewBox& b = boxOf(v[first + i]);
    keys[i] = {byX ? b.minX + b.maxX : b.minY + b.maxY, static_cast<std::uint32_t>(i)};
  }
  groupKeys(keys, 0, n, group);
  scratch.resize(n);
  for (std::size_t i = 0; i < n; ++i) scratch[i] = v[first + keys[i].second];
  std::copy(scratch.begin(), scratch.end(), v.begin() + static_cast<std::ptrdiff_t>(first));
}

// Orders `v` for packing into runs of kFanOut: slices by x, then runs by y inside each slice.
template <class T, class BoxOf>
void tileOrder(std::vector<T>& v, BoxOf boxOf) {
  std::vector<Key> keys;
  std::vector<T> scratch;
  const std::size_t n = v.size();
  if (n <= kFanOut) return;
  const std::size_t groups = (n + kFanOut - 1) / kFanOut;
  const auto slices = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(groups))));
  const std::size_t perSlice = ((groups + slices - 1) / slices) * kFanOut;
  groupByCentre(v, 0, n, perSlice, true, boxOf, keys, scratch);
  for (std::size_t first = 0; first < n; first += perSlice)
    groupByCentre(v, first, std::min(n, first + perSlice), kFanOut, false, boxOf, keys, scratch);
}

// Calls `visit` for every live id whose box meets `query`: the unbounded ones, the side list,
// then the tree depth first. A template over the visitor so the vector form of query() pays no
// indirect call per hit.
template <class Nodes, class Items, class Visit>
void forEachHit(const Nodes& nodes, const Items& items, const Items& pending,
                const std::vector<std::uint32_t>& unbounded, const std::vector<std::uint8_t>& state,
                const HostViewBox& query, Visit&& visit) {
  for (std::uint32_t id : unbounded) visit(id);
  for (const auto& item : pending)
    if (item.box.intersects(query)) visit(item.id);
  if (nodes.empty() || !nodes.back().box.intersects(query)) return;
  // A fixed stack: each level pops one node and pushes at most kFanOut, and a tree of 2^32
  // items is 8 levels deep.
  std::uint32_t stack[16 * kFanOut];
  std::size_t top = 0;
  stack[top++] = static_cast<std::uint32_t>(nodes.size() - 1);
  while (top > 0) {
    const auto& node = nodes[stack[--top]];
    if (node.leaf) {
      for (std::uint32_t k = node.first; k < node.first + node.count; ++k) {
        const auto& item = items[k];
        if (item.box.intersects(query) && state[item.id] == kInTree) visit(item.id);
      }
      continue;
    }
    for (std::uint32_t k = node.first; k < node.first + node.count; ++k)
      if (nodes[k].box.intersects(query)) stack[top++] = k;
  }
}
}  // namespace

void HostViewIndex::clear() {
  items_.clear();
  nodes_.clear();
  pending_.clear();
  state_.clear();
  unbounded_.clear();
  removedInTree_ = 0;
}

void HostViewIndex::build(std::vector<Item> items) {
  clear();
  std::size_t kept = 0;
  for (Item& item : items) {
    if (unusable(item.box)) continue;
    if (item.id >= state_.size()) state_.resize(std::size_t(item.id) + 1, kAbsent);
    if (state_[item.id] != kAbsent) continue;  // a repeated id: the first box stands
    if (isUnbounded(item.box)) {
      state_[item.id] = kUnbounded;
      unbounded_.push_back(item.id);
      continue;
    }
    state_[item.id] = kInTree;
    items[kept++] = item;
  }
  items.resize(kept);
  items_ = std::move(items);
  if (items_.empty()) return;

  tileOrder(items_, [](const Item& i) -> const HostViewBox& { return i.box; });
  std::size_t levelFirst = 0;
  for (std::uint32_t i = 0; i < items_.size(); i += kFanOut) {
    Node leaf;
    leaf.leaf = true;
    leaf.first = i;
    leaf.count = std::min<std::uint32_t>(kFanOut, static_cast<std::uint32_t>(items_.size()) - i);
    for (std::uint32_t k = leaf.first; k < leaf.first + leaf.count; ++k)
      leaf.box.add(items_[k].box);
    nodes_.push_back(leaf);
  }
  // Each pass packs the level [levelFirst, end) under a new level appended after it. Reordering
  // a level is safe: its nodes carry their own child ranges, and no parent points at it yet.
  while (nodes_.size() - levelFirst > 1) {
    const std::size_t levelEnd = nodes_.size();
    std::vector<Node> level(nodes_.begin() + static_cast<std::ptrdiff_t>(levelFirst), nodes_.end());
    tileOrder(level, [](const Node& n) -> const HostViewBox& { return n.box; });
    std::copy(level.begin(), level.end(), nodes_.begin() + static_cast<std::ptrdiff_t>(levelFirst));
    for (std::size_t i = levelFirst; i < levelEnd; i += kFanOut) {
      Node parent;
      parent.first = static_cast<std::uint32_t>(i);
      parent.count = static_cast<std::uint32_t>(std::min<std::size_t>(kFanOut, levelEnd - i));
      for (std::uint32_t k = parent.first; k < parent.first + parent.count; ++k)
        parent.box.add(nodes_[k].box);
      nodes_.push_back(parent);
    }
    levelFirst = levelEnd;
  }
}

void HostViewIndex::remove(std::uint32_t id) {
  if (id >= state_.size()) return;
  switch (state_[id]) {
    case kInTree:
      ++removedInTree_;
      break;
    case kPending:
      // Searched from the back: a box moved again is usually one moved lately.
      for (std::size_t i = pending_.size(); i-- > 0;) {
        if (pending_[i].id == id) {
          pending_[i] = pending_.back();
          pending_.pop_back();
          break;
        }
      }
      break;
    case kUnbounded:
      unbounded_.erase(std::find(unbounded_.begin(), unbounded_.end(), id));
      break;
    default:
      break;
  }
  state_[id] = kAbsent;
}

void HostViewIndex::insert(std::uint32_t id, const HostViewBox& box) {
  if (id < state_.size() && state_[id] == kPending && !unusable(box) && !isUnbounded(box)) {
    for (std::size_t i = pending_.size(); i-- > 0;) {
      if (pending_[i].id == id) {
        pending_[i].box = box;
        return;
      }
    }
  }
  remove(id);
  if (unusable(box)) return;
  if (id >= state_.size()) state_.resize(std::size_t(id) + 1, kAbsent);
  if (isUnbounded(box)) {
    state_[id] = kUnbounded;
    unbounded_.push_back(id);
    return;
  }
  state_[id] = kPending;
  pending_.push_back({id, box});
  const std::size_t live = items_.size() - removedInTree_;
  if (pending_.size() + removedInTree_ > std::max(kMinSlack, live / kShareDivisor)) {
    std::vector<Item> all;
    all.reserve(live + pending_.size() + unbounded_.size());
    for (const Item& item : items_)
      if (state_[item.id] == kInTree) all.push_back(item);
    all.insert(all.end(), pending_.begin(), pending_.end());
    // Unbounded ones are not in the items' boxes any more; rebuild them from their ids.
    const std::vector<std::uint32_t> unbounded = unbounded_;
    const double inf = std::numeric_limits<double>::infinity();
    for (std::uint32_t u : unbounded) all.push_back({u, HostViewBox{-inf, -inf, inf, inf}});
    build(std::move(all));
  }
}

void HostViewIndex::query(const HostViewBox& query,
                          const std::function<void(std::uint32_t)>& visit) const {
  forEachHit(nodes_, items_, pending_, unbounded_, state_, query, visit);
}

void HostViewIndex::query(const HostViewBox& query, std::vector<std::uint32_t>& out) const {
  out.clear();
  forEachHit(nodes_, items_, pending_, unbounded_, state_, query,
             [&out](std::uint32_t id) { out.push_back(id); });
}

std::size_t HostViewIndex::size() const {
  return items_.size() - removedInTree_ + pending_.size() + unbounded_.size();
}

HostViewBox HostViewIndex::bounds() const {
  HostViewBox box;
  if (removedInTree_ == 0) {
    if (!nodes_.empty()) box = nodes_.back().box;
  } else {
    for (const Item& item : items_)
      if (state_[item.id] == kInTree) box.add(item.box);
  }
  for (const Item& item : pending_) box.add(item.box);
  return box;
}
