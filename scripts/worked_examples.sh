#!/usr/bin/env bash
# Renews the outputs that docs/engine.md shows:  scripts/worked_examples.sh [FOLDER OF THE PROGRAMS]
# A syntax between "<!-- syntax NAME" and "-->" is run on the shipped example; what its output says
# from the first section after "Data" on replaces the block between the lines that follow it.
set -euo pipefail
cd "$(dirname "$0")/.."
programs=$(realpath "${1:-build/release/bin}")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$programs/vexdata" import examples/bfi.sav "$folder/bfi.VSF" >/dev/null
cp docs/engine.md "$folder/engine.md"

# The syntaxes, a file each.
awk -v folder="$folder" '
  /^<!-- syntax / { name = $3; next }
  /^-->/ { name = "" }
  name { print > (folder "/" name ".lines") }' docs/engine.md

for lines in "$folder"/*.lines; do
  name=$(basename "$lines" .lines)
  (
    cd "$folder"
    { echo "SY='bfi.VSF'"; cat "$lines"; } >"$name.trk"
    "$programs/torvik" "$name.trk" "$name.out" || { cat "$name.out"; exit 1; }
    # Without title, data section and end.
    awk '/^---/ { sections++ } { line[NR] = $0; at[NR] = sections }
      END { for (i = 1; i <= NR; ++i)
              if ((at[i] >= 2 || at[i + 1] >= 2) && line[i] != "  End of the run.") print line[i] }' \
      "$name.out" | sed -e :a -e '/^\n*$/{$d;N;ba' -e '}' >"$name.text"
  )
done

awk -v folder="$folder" '
  /^<!-- output / { print; print "```"; file = folder "/" $3 ".text"
                    while ((getline text < file) > 0) print text
                    print "```"; skip = 1; next }
  /^<!-- end -->/ { skip = 0 }
  !skip' docs/engine.md >"$folder/engine.new"
cp "$folder/engine.new" docs/engine.md
