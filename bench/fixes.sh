#!/usr/bin/env bash
# stcheck on a drawing of non-standard layers against a standard of as many layers, as a user
# runs it, in every report format: each such layer has every standard layer as a candidate fix
# and the reports list the closest ones. The peer is ezdxf reading the same two files.
#
#   bench/fixes.sh
#
# Builds stcheck, the standard plug-ins and make_name_bench (build folder BENCH_BUILD, default
# build-bench), writes the drawing and the standard of BENCH_LAYERS layers each (default 3000)
# and runs `stcheck check` once per format under /usr/bin/time, printing wall seconds, peak
# resident memory and the report's size. Everything stays in BENCH_BUILD/fixes-work.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BENCH_BUILD:-$root/build-bench}
layers=${BENCH_LAYERS:-3000}

echo "== building in $build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTAUDIT_BENCH=ON \
  >/dev/null
cmake --build "$build" --target stcheck StStandardPlugins make_name_bench
bin=$build/bin
work=$build/fixes-work
rm -rf "$work"
mkdir -p "$work"
cd "$work"
export STAUDIT_CONFIG=$work/config.json  # the defaults, whatever the user configured

echo "== generating $layers layers against $layers"
"$bin/make_name_bench" plan.dxf standard.dws --layers "$layers"

# The peer, measured in the same run: ezdxf reading the same two files, nothing more.
/usr/bin/time -f '%e %M' -o peer.txt /usr/bin/python3 -c 'import sys,ezdxf
for f in sys.argv[1:]: ezdxf.readfile(f)' plan.dxf standard.dws
read -r peerWall peerRss < <(tail -n 1 peer.txt)

{
  echo "stcheck check: $layers non-standard layers against a standard of $layers layers"
  echo "peer: ezdxf reading the drawing and the standard, ${peerWall} s, $((peerRss / 1024)) MB"
  printf '%-8s %10s %14s %14s %14s\n' "format" "wall s" "peak RSS MB" "report MB" "ezdxf/stcheck"
  for format in text json html junit sarif; do
    status=0
    /usr/bin/time -f '%e %M' -o time.txt "$bin/stcheck" check plan.dxf --standard standard.dws \
      --format "$format" -o "report.$format" >/dev/null 2>&1 || status=$?
    if [ "$status" -ne 1 ]; then
      echo "stcheck ended with $status for --format $format (1 expected)" >&2
      exit 1
    fi
    # (time puts a line about the exit status first)
    read -r wall rss < <(tail -n 1 time.txt)
    printf '%-8s %10.2f %14.1f %14.2f %14.2f\n' "$format" "$wall" \
      "$(echo "$rss" | awk '{print $1/1024}')" \
      "$(stat -c %s "report.$format" | awk '{print $1/1e6}')" \
      "$(awk -v p="$peerWall" -v w="$wall" 'BEGIN{print (w > 0 ? p / w : 0)}')"
  done
} | tee report.txt
