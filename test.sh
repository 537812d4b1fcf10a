#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test. Further arguments go to ctest
# (./test.sh -R SystemFile). VEX_REAL_DATA names a folder of sample files by other makers' programs; the
# tests that read them are skipped, and say so, without it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/lib.sh

install_missing
checks=passed
scripts/check.sh || checks=failed
build all

if [[ -z ${VEX_REAL_DATA:-} ]]; then
  say "VEX_REAL_DATA is not set: the tests that read real files of other programs are skipped."
fi

# The tests leave the user's own settings, recent-files list and temporary files alone.
own=$(mktemp -d)
trap 'rm -rf "$own"' EXIT
mkdir -m 700 "$own"/{config,data,run}
# A server that a test starts may not be root's: its user passes through to a folder of its own.
chmod 711 "$own"
mkdir -m 711 "$own/tmp"
export TMPDIR=$own/tmp XDG_CONFIG_HOME=$own/config XDG_DATA_HOME=$own/data XDG_RUNTIME_DIR=$own/run
export LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen
unset DISPLAY WAYLAND_DISPLAY

say "Running the tests"
ctest --preset release --parallel "$(nproc)" --no-tests=error "$@"
[[ $checks == passed ]] || die "the tests passed, but scripts/check.sh did not (see above)"
