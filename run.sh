#!/usr/bin/env bash
# Installs what is missing, builds the programs and opens FILE, or the example survey, in vexapp. Without a
# display it imports, shows and screens the same file in the terminal.
#   ./run.sh [FILE]
set -euo pipefail

case ${1:-} in
  -h | --help)
    sed -n '2,4s/^# \{0,1\}//p' "$0"
    exit 0
    ;;
esac
if (($# > 1)); then
  printf 'usage: %s [FILE]\n' "$0" >&2
  exit 2
fi

# A relative name means the caller's folder, not the checkout.
file=
if (($# == 1)); then
  [[ -f $1 ]] || {
    printf '%s: there is no file %s\n' "$0" "$1" >&2
    exit 1
  }
  file=$(realpath -- "$1")
fi
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/lib.sh
show_options=(--cases 1-10)
if [[ -z $file ]]; then
  file=$PWD/examples/bfi.sav
  show_options+=(--variables 'A1-A5,gender,education,age')
fi

install_missing
build vexapp vexdata torvik
bin=$PWD/build/release/bin

if [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; then
  # The example opens at once; for a file of the user's own, vexapp asks where the system data file is to lie.
  if (($# == 0)); then
    mkdir -p build/try
    "$bin/vexdata" import "$file" build/try/bfi.VSF --keep-labels --overwrite --quiet
    file=$PWD/build/try/bfi.VSF
  fi
  say "Opening $file"
  exec "$bin/vexapp" "$file"
fi

in_terminal() {
  local word
  printf '\n$'
  for word in "$@"; do
    [[ $word != *[[:space:]]* ]] || word="\"$word\""
    printf ' %s' "$word"
  done
  printf '\n'
  "$bin/$1" "${@:2}"
}

say "There is no display: showing $file in the terminal."
data=$file
if [[ ${file,,} != *.vsf ]]; then
  mkdir -p build/try
  base=${file##*/}
  data=build/try/${base%.*}.VSF
  in_terminal vexdata import "$file" "$data" --overwrite
fi
in_terminal vexdata info "$data"
in_terminal vexdata show "$data" "${show_options[@]}"
in_terminal vexdata run "$data"
printf '\n'
say "The data are in $data; the programs in build/release/bin (vexdata --help)."
say "To see the window, run ./run.sh in a desktop session or over ssh -X."
