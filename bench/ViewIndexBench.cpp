// The drawing view's spatial index on 200,000 random boxes, as a large drawing gives it:
//
//   view_index_bench [benchmark flags]
//
// Build (the packed tree from scratch), Query (a box a few entities wide, as a click or a
// zoomed-in paint asks), QueryWide (a tenth of the drawing, as a paint at low zoom asks) and
// Move (one box given again, the rebuilds it triggers included).

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "HostViewIndex.h"

namespace {

constexpr std::uint32_t kBoxes = 200000;
constexpr double kSide = 100000;

HostViewBox randomBox(std::mt19937& rng, double size) {
  std::uniform_real_distribution<double> at(0, kSide), extent(0, size);
  HostViewBox b;
  const double x = at(rng), y = at(rng);
  b.add(x, y);
  b.add(x + extent(rng), y + extent(rng));
  return b;
}

std::vector<HostViewIndex::Item> items() {
  std::mt19937 rng(1);
  std::vector<HostViewIndex::Item> out;
  for (std::uint32_t i = 0; i < kBoxes; ++i) out.push_back({i, randomBox(rng, 50)});
  return out;
}

void Build(benchmark::State& state) {
  const auto boxes = items();
  HostViewIndex index;
  for (auto _ : state) index.build(boxes);
  state.SetItemsProcessed(state.iterations() * kBoxes);
}

void query(benchmark::State& state, double size) {
  HostViewIndex index;
  index.build(items());
  std::mt19937 rng(2);
  std::vector<std::uint32_t> hits;
  std::size_t found = 0;
  for (auto _ : state) {
    HostViewBox q = randomBox(rng, 0);
    q.add(q.minX + size, q.minY + size);
    index.query(q, hits);
    found += hits.size();
  }
  state.counters["hits"] = benchmark::Counter(double(found), benchmark::Counter::kAvgIterations);
}
void Query(benchmark::State& state) {
  query(state, 200);
}
void QueryWide(benchmark::State& state) {
  query(state, kSide / 10);
}

void Move(benchmark::State& state) {
  HostViewIndex index;
  index.build(items());
  std::mt19937 rng(3);
  std::uint32_t id = 0;
  for (auto _ : state) index.insert(id++ % kBoxes, randomBox(rng, 50));
}

BENCHMARK(Build)->Unit(benchmark::kMillisecond);
BENCHMARK(Query)->Unit(benchmark::kMicrosecond);
BENCHMARK(QueryWide)->Unit(benchmark::kMicrosecond);
BENCHMARK(Move)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
