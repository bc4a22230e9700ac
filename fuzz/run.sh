#!/usr/bin/env bash
# Builds a fuzzer with clang and runs it.
#
#   fuzz/run.sh [dxf|config] [SECONDS]
#
# dxf (the default) fuzzes the DXF reader, config the configuration reader, for SECONDS
# (default 600).
#
# Environment: FUZZ_BUILD (build folder, default build-fuzz), FUZZ_JOBS (parallel fuzzing
# processes, default 1), FUZZ_MAX_LEN (largest input in bytes, default 65536).
#
# The working corpus is made in the build folder at every run, never in the project: for dxf
# from the shared drawings that fit in FUZZ_MAX_LEN, for config from a few small
# configurations written below; and from the target's kept regression inputs. Inputs that
# crash, hang or exhaust memory are copied to the target's regression folder
# (fuzz/regressions/ for dxf, read by the kernel's regression test; fuzz/config-regressions/
# for config, read by the host's); the run exits with status 1 when there are new ones.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
target=dxf
case ${1:-} in
  dxf | config)
    target=$1
    shift
    ;;
esac
seconds=${1:-600}
build=${FUZZ_BUILD:-$root/build-fuzz}
jobs=${FUZZ_JOBS:-1}
max_len=${FUZZ_MAX_LEN:-65536}
corpus=$root/../shared/corpus
if [ "$target" = dxf ]; then
  fuzzer=dxf_reader_fuzzer
  regressions=$root/fuzz/regressions
else
  fuzzer=config_reader_fuzzer
  regressions=$root/fuzz/config-regressions
fi

case $seconds in
  '' | *[!0-9]*)
    echo "usage: fuzz/run.sh [dxf|config] [SECONDS]" >&2
    exit 2
    ;;
esac

echo "== building the fuzzer in $build"
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DSTAUDIT_FUZZ=ON -DSTAUDIT_TESTS=OFF >/dev/null
cmake --build "$build" --target $fuzzer

work=$build/fuzz-work
[ "$target" = dxf ] || work=$build/fuzz-work-$target
seeds=$work/corpus
findings=$work/findings
mkdir -p "$seeds" "$findings" "$regressions"
if [ "$target" = config ]; then
  # Small configurations of the file's own layout: fresh, with typed values, nested keys.
  key='{"keys": {}, "values": {}}'
  printf '{"format": 1, "root": {"keys": {"cmddata": %s}, "values": {}}}\n' "$key" >"$seeds/fresh.json"
  printf '%s\n' '{"format": 1, "root": {"keys": {}, "values": {"s": {"string": "a\u00e9"},' \
    '"b": {"bool": true}, "i": {"int8": -128}, "j": {"int16": 300}, "k": {"int32": 70000},' \
    '"l": {"int64": -9007199254740993}, "d": {"double": 0.25}}}}' >"$seeds/values.json"
  printf '{"format": 1, "root": {"keys": {"a": {"keys": {"b": {"keys": {"c": %s},' "$key" \
    >"$seeds/nested.json"
  printf ' "values": {"n": {"int32": 1}}}}, "values": {}}}, "values": {}}}\n' >>"$seeds/nested.json"
elif [ -d "$corpus" ]; then
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
  "$build/bin/$fuzzer" "$seeds" \
    -dict="$root/fuzz/$target.dict" \
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
    echo "new finding: ${regressions#"$root"/}/$(basename "$f")"
    new=$((new + 1))
  fi
done
total=$(find "$findings" -type f | wc -l)
echo "== $((total - before)) finding(s) this run, $new new in ${regressions#"$root"/}"
echo "   reproduce one: $build/bin/$fuzzer ${regressions#"$root"/}/<file>"
[ "$new" -eq 0 ]
