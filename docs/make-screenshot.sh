#!/usr/bin/env bash
# Makes docs/stdesk.png, the picture of the desktop host in the README: stdesk opens the bundled
# example in a virtual X server, runs a short script on its command line, takes a picture of its
# window and quits. Needs a build with stdesk (./build.sh test) and xvfb-run.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp examples/floor-plan.dxf examples/*.dws "$work"/
cat >"$work/shot.scr" <<SCRIPT
ZOOM E
SCREENSHOT stdesk.png
QUIT
SCRIPT
cd "$work"
env -u QT_QPA_PLATFORM STAUDIT_CONFIG="$work/config.json" \
  xvfb-run -a -s '-screen 0 1280x900x24' "$OLDPWD/build/bin/stdesk" floor-plan.dxf --script shot.scr
cp stdesk.png "$OLDPWD/docs/stdesk.png"
