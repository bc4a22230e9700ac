#!/usr/bin/env bash
# stcheck from load to report, against the time ezdxf alone takes to load the same files.
#
#   bench/stcheck.sh
#
# Builds stcheck, the standard plug-ins and the drawing generators (build folder BENCH_BUILD,
# default build-bench), then measures wall-clock seconds, each the best of BENCH_REPEAT runs
# (default 3):
#   - a batch: BENCH_BATCH generated drawings (default 24) of BENCH_BATCH_ENTITIES entities each
#     (default 5000), checked with --jobs 1 and --jobs 2, against one ezdxf process reading them
#     all;
#   - one large drawing of BENCH_ENTITIES entities (default 120000), checked, against ezdxf
#     reading it.
# Every check writes a JSON report; the generated drawings' layers are not in the standard, so
# each drawing reports problems (exit 1). Everything stays in BENCH_BUILD/stcheck-work.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BENCH_BUILD:-$root/build-bench}
batch=${BENCH_BATCH:-24}
batchEntities=${BENCH_BATCH_ENTITIES:-5000}
entities=${BENCH_ENTITIES:-120000}
repeat=${BENCH_REPEAT:-3}
python=/usr/bin/python3

echo "== building in $build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTAUDIT_BENCH=ON \
  >/dev/null
cmake --build "$build" --target stcheck StStandardPlugins make_examples make_bench_drawing
bin=$build/bin
work=$build/stcheck-work
rm -rf "$work"
mkdir -p "$work/batch" "$work/large"
cd "$work"
export STAUDIT_CONFIG=$work/config.json  # the defaults, whatever the user configured

echo "== generating drawings"
"$bin/make_examples" "$work" >/dev/null
for i in $(seq -w 1 "$batch"); do
  "$bin/make_bench_drawing" "batch/plan-$i.dxf" --entities "$batchEntities" >/dev/null
done
"$bin/make_bench_drawing" large/large.dxf --entities "$entities" >/dev/null

# best SECONDS of REPEAT runs of a command (its exit status 0 or 1 is expected)
best() {
  local bestTime=""
  for _ in $(seq "$repeat"); do
    local start end
    start=$(date +%s.%N)
    "$@" >/dev/null 2>&1 || [ $? -eq 1 ]
    end=$(date +%s.%N)
    bestTime=$(echo "$start $end ${bestTime:-999999}" | awk '{t=$2-$1; print (t<$3)?t:$3}')
  done
  echo "$bestTime"
}

ezdxfLoad() {
  "$python" -c 'import sys,ezdxf
for f in sys.argv[1:]: ezdxf.readfile(f)' "$@"
}

std=$work/office-standards.dws
echo "== measuring (best of $repeat)"
b1=$(best "$bin/stcheck" check batch --standard "$std" --format json -o batch1.json)
b2=$(best "$bin/stcheck" check batch --standard "$std" --format json -o batch2.json --jobs 2)
bz=$(best ezdxfLoad batch/*.dxf)
l1=$(best "$bin/stcheck" check large/large.dxf --standard "$std" --format json -o large.json)
lz=$(best ezdxfLoad large/large.dxf)
problems=$("$python" -c 'import json,sys
print(sum(len(d["problems"]) for d in json.load(open(sys.argv[1]))["drawings"]))' batch1.json)
batchBytes=$(du -cb batch/*.dxf | tail -1 | cut -f1)
largeBytes=$(stat -c %s large/large.dxf)

{
  echo "stcheck from load to report against ezdxf loading the same files (wall seconds, best of $repeat)"
  printf '%-44s %9s %9s %9s\n' "workload" "stcheck" "ezdxf" "ezdxf/us"
  printf '%-44s %9.3f %9.3f %8.1fx\n' "batch: $batch drawings, $((batchBytes / 1000000)) MB, --jobs 1" "$b1" "$bz" \
    "$(echo "$bz $b1" | awk '{print $1/$2}')"
  printf '%-44s %9.3f %9.3f %8.1fx\n' "batch: same, --jobs 2" "$b2" "$bz" \
    "$(echo "$bz $b2" | awk '{print $1/$2}')"
  printf '%-44s %9.3f %9.3f %8.1fx\n' "one drawing: $entities entities, $((largeBytes / 1000000)) MB" "$l1" "$lz" \
    "$(echo "$lz $l1" | awk '{print $1/$2}')"
  echo "(the batch reports $problems problems)"
} | tee report.txt
