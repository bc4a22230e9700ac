#!/usr/bin/env bash
# Load and save benchmarks of the DXF file layer, compared with ezdxf on the same files.
#
#   bench/run.sh
#
# Builds the benchmarks (build folder BENCH_BUILD, default build-bench), generates four large
# drawings in the build folder (R2018 and R12 in code-page form, each ASCII and binary;
# BENCH_ENTITIES entities in model space, default 120000), then on those and on the shared
# corpus drawings of 1 MB and more measures:
#   - our load, save, save-to-memory and conversion throughput, of the file layer and of the
#     full drawing database (dxf_bench, Google Benchmark);
#   - our peak memory in a process that only loads the file (dxf_load_probe);
#   - ezdxf's readfile and saveas, one process per file (skipped with BENCH_SKIP_EZDXF=1);
# and prints a table. Everything it writes stays in BENCH_BUILD/bench-work.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BENCH_BUILD:-$root/build-bench}
entities=${BENCH_ENTITIES:-120000}
corpus=$root/../shared/corpus
python=/usr/bin/python3

echo "== building the benchmarks in $build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTAUDIT_BENCH=ON \
  >/dev/null
cmake --build "$build" --target make_bench_drawing dxf_bench dxf_load_probe
bin=$build/bin
work=$build/bench-work
mkdir -p "$work"
cd "$work"

echo "== generating drawings with $entities entities"
files=()
for variant in "r2018" "r2018_bin --binary" "r12_ansi1252 --r12" "r12_ansi1252_bin --r12 --binary"; do
  set -- $variant
  name=bench_$1.dxf
  shift
  "$bin/make_bench_drawing" "$name" --entities "$entities" "$@"
  files+=("$work/$name")
done
if [ -d "$corpus" ]; then
  while IFS= read -r f; do files+=("$f"); done < <(find "$corpus" -maxdepth 1 -type f \
    -iname '*.dxf' ! -name 'bad_*' -size +999999c | sort)
else
  echo "note: the shared corpus ($corpus) is absent; measuring the generated drawings only"
fi

echo "== our load and save (dxf_bench)"
"$bin/dxf_bench" --benchmark_min_time=0.5 --benchmark_out=ours.json \
  --benchmark_out_format=json "${files[@]}"

echo "== our peak memory (dxf_load_probe, file layer and full database)"
: >probes.jsonl
: >dbprobes.jsonl
for f in "${files[@]}"; do
  "$bin/dxf_load_probe" "$f" >>probes.jsonl || true
  "$bin/dxf_load_probe" --database "$f" >>dbprobes.jsonl || true
done

: >ezdxf.jsonl
if [ "${BENCH_SKIP_EZDXF:-0}" != 1 ]; then
  echo "== ezdxf load and save, one process per file (the slow part)"
  for f in "${files[@]}"; do
    "$python" "$root/bench/ezdxf_probe.py" "$f" "$work" | tee -a ezdxf.jsonl
  done
fi

echo
"$python" "$root/bench/report.py" ours.json probes.jsonl dbprobes.jsonl ezdxf.jsonl "${files[@]}" | tee report.txt
echo
echo "(figures kept in $work: ours.json, probes.jsonl, dbprobes.jsonl, ezdxf.jsonl, report.txt)"
