#!/usr/bin/env bash
# The drawing view against ezdxf's drawing add-on on the same files.
#
#   bench/view.sh
#
# Builds view_probe, stcheck and the drawing generator (build folder BENCH_BUILD, default
# build-bench), generates a drawing of BENCH_ENTITIES entities (default 200000) and takes the two
# largest drawings of the shared corpus, then for each file measures in one run:
#   - stcheck convert, wall-clock (best of 3), and the load alone inside view_probe;
#   - the view: open to first paint, a redraw at extents, one zoomed to a hundredth, peak memory
#     (view_probe, one process per file);
#   - the peer: ezdxf's drawing add-on with matplotlib's Agg raster at the same size
#     (ezdxf_draw_probe.py; needs python3-ezdxf and python3-matplotlib; BENCH_SKIP_EZDXF=1 skips;
#     limited in memory and time, see below);
# and prints a table with the ratios. Everything stays in BENCH_BUILD/view-work.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BENCH_BUILD:-$root/build-bench}
entities=${BENCH_ENTITIES:-200000}
corpus=$root/../shared/corpus
python=/usr/bin/python3

echo "== building in $build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTAUDIT_BENCH=ON \
  >/dev/null
cmake --build "$build" --target view_probe stcheck make_bench_drawing >/dev/null
bin=$build/bin
work=$build/view-work
rm -rf "$work"
mkdir -p "$work"
cd "$work"
export STAUDIT_CONFIG=$work/config.json

echo "== generating a drawing of $entities entities"
"$bin/make_bench_drawing" generated.dxf --entities "$entities" >/dev/null
files=("$work/generated.dxf")
if [ -d "$corpus" ]; then
  while IFS= read -r f; do files+=("$f"); done < <(find "$corpus" -maxdepth 1 -type f \
    -iname '*.dxf' ! -name 'bad_*' -printf '%s %p\n' | sort -rn | head -2 | cut -d' ' -f2-)
else
  echo "note: the shared corpus ($corpus) is absent; measuring the generated drawing only"
fi

: >ours.jsonl
: >peer.jsonl
: >convert.txt
for f in "${files[@]}"; do
  name=$(basename "$f")
  echo "== $name"
  for _ in 1 2 3; do
    TIMEFORMAT=%R
    t=$({ time "$bin/stcheck" convert "$f" "$work/converted.dxf" >/dev/null 2>&1; } 2>&1)
    echo "$name $t" >>convert.txt
  done
  "$bin/view_probe" "$f" --png "$work/${name%.*}.png" >>ours.jsonl 2>>view_probe.log
  if [ "${BENCH_SKIP_EZDXF:-0}" != 1 ]; then
    # The peer's memory grows with the drawing past what a machine has: it is given
    # BENCH_PEER_MEMORY_MB (default 8192) and BENCH_PEER_SECONDS (default 1200), and a file it
    # cannot finish within them is reported as such.
    out=$( (ulimit -v $((${BENCH_PEER_MEMORY_MB:-8192} * 1024))
      timeout "${BENCH_PEER_SECONDS:-1200}" "$python" "$root/bench/ezdxf_draw_probe.py" "$f") \
      2>>peer.log) || true
    [ -n "$out" ] || out="{\"file\": \"$name\", \"error\": \"not finished within ${BENCH_PEER_SECONDS:-1200} s and ${BENCH_PEER_MEMORY_MB:-8192} MB\"}"
    echo "$out" >>peer.jsonl
  fi
done

"$python" - <<'PY'
import json
ours = [json.loads(l) for l in open("ours.jsonl")]
peer = {p["file"]: p for p in (json.loads(l) for l in open("peer.jsonl"))}
conv = {}
for line in open("convert.txt"):
    name, seconds = line.split()
    conv[name] = min(float(seconds), conv.get(name, float("inf")))
def ratio(a, b):
    return f"{a / b:7.1f}x" if a and b else "      -"
print()
print(f"{'file':44} {'convert s':>9} {'load s':>7} {'1st paint s':>11} {'/conv':>6} {'/load':>6}"
      f" {'extents ms':>10} {'zoom ms':>8} {'peak MB':>8} | {'peer 1st s':>10} {'peer ext ms':>11}"
      f" {'peer zoom ms':>12} {'peer MB':>8} | {'1st':>8} {'extents':>8} {'zoom':>8}")
for o in ours:
    p = peer.get(o["file"], {})
    mb = o["peak_rss_kb"] / 1024
    pmb = p.get("peak_rss_kb", 0) / 1024
    print(f"{o['file'][:44]:44} {float(conv.get(o['file'], 0)):9.2f} {o['load_seconds']:7.2f}"
          f" {o['first_paint_seconds']:11.2f}"
          f" {o['first_paint_seconds'] / max(conv.get(o['file'], 0), 1e-3):6.2f}"
          f" {o['first_paint_seconds'] / o['load_seconds']:6.2f}"
          f" {o['extents_ms']:10.1f} {o['zoom_ms']:8.2f} {mb:8.0f} |"
          f" {p.get('first_paint_seconds', 0):10.2f} {p.get('extents_ms', 0):11.0f}"
          f" {p.get('zoom_ms', 0):12.0f} {pmb:8.0f} |"
          f" {ratio(p.get('first_paint_seconds'), o['first_paint_seconds'])}"
          f" {ratio(p.get('extents_ms'), o['extents_ms'])} {ratio(p.get('zoom_ms'), o['zoom_ms'])}"
          + (f"  peer error: {p['error']}" if 'error' in p else ""))
print("\nratios: the peer's time over ours (higher is better for us); /conv and /load: our first"
      " paint over stcheck convert's whole run and over our load alone")
PY
