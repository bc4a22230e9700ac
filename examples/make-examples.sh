#!/usr/bin/env bash
# Rewrites the example project in this folder: office-standards.dws, site-standards.dws and
# floor-plan.dxf. Usage: examples/make-examples.sh [BUILD_DIR]   (default: build)
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-$here/../build}"
cmake --build "$build" --target make_examples >/dev/null
"$build/bin/make_examples" "$here"
