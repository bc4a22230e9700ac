#!/usr/bin/env bash
# Installs what the project needs on Debian bookworm, builds it, and runs either the main job
# on the bundled example or every test.
#
#   ./build.sh example   check the bundled example drawing
#   ./build.sh test      build (normal and sanitizer builds) and run every test
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(build-essential cmake ninja-build pkg-config libicu-dev nlohmann-json3-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev python3 qt6-base-dev)
# Only the tests need these: an independent DXF reader, a JSON Schema validator and a headless
# browser read back what stcheck writes; a virtual X server, xdotool and a font run the desktop
# host's real window.
TEST_PACKAGES=(python3-ezdxf python3-jsonschema chromium xvfb xauth xdotool fonts-dejavu-core)

# install_packages PACKAGE...
install_packages() {
  local missing=()
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  echo "installing: ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# build DIR [-DOPTION=VALUE...] [TARGET...]   (every target when none is named)
build() {
  local dir=$1
  shift
  local options=() targets=()
  for arg in "$@"; do
    case "$arg" in
      -D*) options+=("$arg") ;;
      *) targets+=("$arg") ;;
    esac
  done
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTAUDIT_WERROR=ON \
    "${options[@]}" >/dev/null
  if [ ${#targets[@]} -gt 0 ]; then
    cmake --build "$dir" -j "$(nproc)" --target "${targets[@]}"
  else
    cmake --build "$dir" -j "$(nproc)"
  fi
}

case "${1:-}" in
  example)
    install_packages "${PACKAGES[@]}"
    # Only what the example runs: the checker, the module and its plug-ins.
    build build stcheck StandardsAudit StStandardPlugins
    build/bin/stcheck --version
    echo "== stcheck standards examples/floor-plan.dxf   (the standards files the drawing names)"
    build/bin/stcheck standards examples/floor-plan.dxf
    echo "== stcheck check examples/floor-plan.dxf"
    # The example is meant to break its standards: exit 1 (problems remain) is the expected
    # outcome; 2 or a crash is a failure.
    status=0
    build/bin/stcheck check examples/floor-plan.dxf || status=$?
    echo "== stcheck exited with $status (0 meets the standards, 1 problems remain, 2 not read)"
    [ "$status" -le 1 ]
    ;;
  test)
    install_packages "${PACKAGES[@]}" "${TEST_PACKAGES[@]}"
    build build
    build build-asan -DSTAUDIT_SANITIZE=ON
    status=0
    echo "== tests"
    ctest --test-dir build -j "$(nproc)" --output-on-failure || status=1
    echo "== tests under AddressSanitizer and UndefinedBehaviorSanitizer"
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
      LSAN_OPTIONS="suppressions=$PWD/tests/sanitizer/lsan.supp" \
      ctest --test-dir build-asan -j "$(nproc)" --output-on-failure || status=1
    exit $status
    ;;
  *)
    echo "usage: ./build.sh example | test" >&2
    exit 2
    ;;
esac
