#!/usr/bin/env bash
# Renews the outputs that the pages of docs show:  scripts/worked_examples.sh [FOLDER OF THE PROGRAMS]
# On the shipped example a syntax between "<!-- syntax NAME" and "-->" is run by the engine, and what
# stands between "<!-- run NAME" and "-->" by `vexdata run bfi.VSF`. What the output says from the
# first section after "Data" on replaces the block between "<!-- output NAME -->" and "<!-- end -->".
set -euo pipefail
cd "$(dirname "$0")/.."
programs=$(realpath "${1:-build/release/bin}")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$programs/vexdata" import examples/bfi.sav "$folder/bfi.VSF" >/dev/null

# The output of one example.
run() {
  local name=$1
  cd "$folder"
  if [[ -f $name.syntax ]]; then
    { echo "SY='bfi.VSF'"; cat "$name.syntax"; } >"$name.trk"
    "$programs/torvik" "$name.trk" "$name.out" || { cat "$name.out"; exit 1; }
  else
    xargs -a "$name.run" "$programs/vexdata" run bfi.VSF >"$name.out" || { cat "$name.out"; exit 1; }
  fi
  # Without title, data section and end.
  awk '/^---/ { sections++ } { line[NR] = $0; at[NR] = sections }
    END { for (i = 1; i <= NR; ++i)
            if ((at[i] >= 2 || at[i + 1] >= 2) && line[i] != "  End of the run.") print line[i] }' \
    "$name.out" | sed -e :a -e '/^\n*$/{$d;N;ba' -e '}' |
    sed "s|$folder/||" >"$name.text"
}

for page in docs/engine.md docs/examples.md; do
  # A file for each example, in the order of the page.
  names=$(awk -v folder="$folder" '
    /^<!-- (syntax|run) / { file = folder "/" $3 "." $2; print $3; next }
    /^-->/ { file = "" }
    file { print > file }' "$page")
  for name in $names; do (run "$name"); done
  awk -v folder="$folder" '
    /^<!-- output / { print; print "```"; file = folder "/" $3 ".text"
                      while ((getline text < file) > 0) print text
                      print "```"; skip = 1; next }
    /^<!-- end -->/ { skip = 0 }
    !skip' "$page" >"$folder/page"
  cp "$folder/page" "$page"
done
