#!/usr/bin/env bash
# Installs what the project needs on Debian bookworm, builds it, and runs either the main job
# on the bundled example or every test.
#
#   ./build.sh example   check the bundled example drawing
#   ./build.sh test      build (normal and sanitizer builds) and run every test
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(build-essential cmake ninja-build pkg-config libicu-dev nlohmann-json3-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev python3)
# Only the tests need these: an independent DXF reader, a JSON Schema validator and a headless
# browser read back what stcheck writes.
TEST_PACKAGES=(python3-ezdxf python3-jsonschema chromium)

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

# build DIR [cmake options...]
build() {
  local dir=$1
  shift
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSTAUDIT_WERROR=ON "$@" >/dev/null
  cmake --build "$dir" -j "$(nproc)"
}

case "${1:-}" in
  example)
    install_packages "${PACKAGES[@]}"
    build build
    build/bin/stcheck --version
    echo "== the example drawing"
    build/bin/stcheck info examples/floor-plan.dxf
    echo "== the office standards it is to follow"
    build/bin/stcheck info examples/office-standards.dws
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
      ctest --test-dir build-asan -j "$(nproc)" --output-on-failure || status=1
    exit $status
    ;;
  *)
    echo "usage: ./build.sh example | test" >&2
    exit 2
    ;;
esac
