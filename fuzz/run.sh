#!/usr/bin/env bash
# Builds the DXF reader fuzzer with clang and runs it.
#
#   fuzz/run.sh [SECONDS]      fuzz for SECONDS (default 600)
#
# Environment: FUZZ_BUILD (build folder, default build-fuzz), FUZZ_JOBS (parallel fuzzing
# processes, default 1), FUZZ_MAX_LEN (largest input in bytes, default 65536).
#
# The working corpus is made in the build folder at every run from the shared drawings that
# fit in FUZZ_MAX_LEN and the kept regression inputs; it never goes into the project. Inputs
# that crash, hang or exhaust memory are copied to fuzz/regressions/, where the kernel's
# regression test reads them; the run exits with status 1 when there are new ones.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-600}
build=${FUZZ_BUILD:-$root/build-fuzz}
jobs=${FUZZ_JOBS:-1}
max_len=${FUZZ_MAX_LEN:-65536}
corpus=$root/../shared/corpus
regressions=$root/fuzz/regressions

case $seconds in
  '' | *[!0-9]*)
    echo "usage: fuzz/run.sh [SECONDS]" >&2
    exit 2
    ;;
esac

echo "== building the fuzzer in $build"
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DSTAUDIT_FUZZ=ON -DSTAUDIT_TESTS=OFF >/dev/null
cmake --build "$build" --target dxf_reader_fuzzer

work=$build/fuzz-work
seeds=$work/corpus
findings=$work/findings
mkdir -p "$seeds" "$findings" "$regressions"
if [ -d "$corpus" ]; then
  find "$corpus" -maxdepth 1 -type f -iname '*.dxf' -size -$((max_len + 1))c \
    -exec cp --no-clobber -t "$seeds" {} +
else
  echo "note: the shared corpus ($corpus) is absent; seeding with the regression inputs only"
fi
find "$regressions" -maxdepth 1 -type f ! -name '*.md' -exec cp --no-clobber -t "$seeds" {} +
echo "== fuzzing for $seconds s with $jobs job(s); $(find "$seeds" -type f | wc -l) inputs in $seeds"

before=$(find "$findings" -type f | wc -l)
set +e
(
  cd "$work"
  "$build/bin/dxf_reader_fuzzer" "$seeds" \
    -dict="$root/fuzz/dxf.dict" \
    -max_len="$max_len" \
    -timeout=10 \
    -rss_limit_mb=2048 \
    -max_total_time="$seconds" \
    -fork="$jobs" -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
    -artifact_prefix="$findings/" \
    -print_final_stats=1 -print_funcs=0
)
status=$?
set -e
echo "== fuzzer exited with status $status"

new=0
for f in "$findings"/crash-* "$findings"/timeout-* "$findings"/oom-* "$findings"/leak-*; do
  [ -e "$f" ] || continue
  if [ ! -e "$regressions/$(basename "$f")" ]; then
    cp "$f" "$regressions/"
    echo "new finding: fuzz/regressions/$(basename "$f")"
    new=$((new + 1))
  fi
done
total=$(find "$findings" -type f | wc -l)
echo "== $((total - before)) finding(s) this run, $new new in fuzz/regressions"
echo "   reproduce one: $build/bin/dxf_reader_fuzzer fuzz/regressions/<file>"
[ "$new" -eq 0 ]
