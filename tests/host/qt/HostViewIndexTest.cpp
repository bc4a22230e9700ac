// The spatial index answers exactly what a scan over every box answers, through a build, moves,
// removals, unbounded boxes and the rebuilds the side list triggers.

#include <QTest>
#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "HostViewIndex.h"

namespace {
HostViewBox boxOf(double x0, double y0, double x1, double y1) {
  HostViewBox b;
  b.add(x0, y0);
  b.add(x1, y1);
  return b;
}

// The reference: every live box, scanned.
struct Scan {
  std::map<std::uint32_t, HostViewBox> boxes;
  std::vector<std::uint32_t> query(const HostViewBox& q) const {
    std::vector<std::uint32_t> out;
    for (const auto& [id, b] : boxes)
      if (b.minX == -std::numeric_limits<double>::infinity() || b.intersects(q)) out.push_back(id);
    return out;
  }
};
}  // namespace

class HostViewIndexTest : public QObject {
  Q_OBJECT

 private slots:
  void agreesWithAScan();
};

void HostViewIndexTest::agreesWithAScan() {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> coord(-1000, 1000), size(0, 40), pick(0, 1);
  const double inf = std::numeric_limits<double>::infinity();
  const HostViewBox unbounded{-inf, -inf, inf, inf};
  // Mostly small boxes, some points and a few huge ones; every 97th unbounded, every 89th empty
  // (not indexed), and a clump of identical boxes that sorting cannot tell apart.
  auto randomBox = [&](std::uint32_t id) {
    if (id % 97 == 5) return unbounded;
    if (id % 89 == 3) return HostViewBox();
    if (id % 50 == 1) return boxOf(3, 3, 4, 4);
    const double x = coord(rng), y = coord(rng);
    const double w = id % 13 == 0 ? 0 : id % 31 == 0 ? size(rng) * 40 : size(rng);
    return boxOf(x, y, x + w, y + (id % 13 == 0 ? 0 : size(rng)));
  };

  std::vector<HostViewIndex::Item> items;
  Scan scan;
  for (std::uint32_t id = 0; id < 5000; ++id) {
    const HostViewBox b = randomBox(id);
    items.push_back({id, b});
    if (!b.empty()) scan.boxes[id] = b;
  }
  items.push_back({0, boxOf(5000, 5000, 5001, 5001)});  // a repeated id: the first box stands
  HostViewIndex index;
  index.build(items);

  auto check = [&](const char* when) {
    QCOMPARE(index.size(), scan.boxes.size());
    HostViewBox bounds;
    for (const auto& [id, b] : scan.boxes)
      if (b.minX != -inf) bounds.add(b);
    const HostViewBox indexed = index.bounds();
    QVERIFY2(indexed.minX == bounds.minX && indexed.maxY == bounds.maxY, when);
    for (int q = 0; q < 60; ++q) {
      const double x = coord(rng), y = coord(rng), w = q % 10 == 0 ? 0 : size(rng) * 10;
      // Some queries touch a box's edge exactly: a shared edge counts as meeting.
      const HostViewBox query = q % 7 == 0 ? boxOf(4, 4, 9, 9) : boxOf(x, y, x + w, y + w);
      std::vector<std::uint32_t> got, viaCallback;
      index.query(query, got);
      index.query(query, [&](std::uint32_t id) { viaCallback.push_back(id); });
      std::sort(got.begin(), got.end());
      std::sort(viaCallback.begin(), viaCallback.end());
      QVERIFY2(got == scan.query(query), when);
      QVERIFY2(viaCallback == got, when);
    }
  };
  check("after the build");

  // Enough edits to pass the rebuild threshold several times, with a query check between: new
  // ids, moves of built and of pending ones, removals, unbounded ones given a box and back.
  for (int round = 0; round < 8; ++round) {
    for (int k = 0; k < 400; ++k) {
      const double r = pick(rng);
      const auto id = static_cast<std::uint32_t>(pick(rng) * 6000);
      if (r < 0.25) {
        index.remove(id);
        scan.boxes.erase(id);
      } else {
        const HostViewBox b = r < 0.3 ? unbounded : r < 0.33 ? HostViewBox() : randomBox(id + 1);
        index.insert(id, b);
        if (b.empty())
          scan.boxes.erase(id);
        else
          scan.boxes[id] = b;
      }
    }
    check("after edits");
  }

  index.clear();
  std::vector<std::uint32_t> none;
  index.query(unbounded, none);
  QVERIFY(none.empty() && index.size() == 0 && index.bounds().empty());
}

QTEST_MAIN(HostViewIndexTest)
#include "HostViewIndexTest.moc"
