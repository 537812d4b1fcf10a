#!/usr/bin/env bash
# The rules of the tree that no compiler keeps: formatting, no toolkit in the core, no leftovers, no broken links,
# sound shell scripts. A check whose tool is not installed says so and counts as passed.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/lib.sh

if ! git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
  say "Checks of the tree: not run (this is no git checkout)."
  exit 0
fi

failed=0
fault() {
  printf 'check: %s\n' "$1" >&2
  failed=1
}

# Tracked files and new ones that are not ignored.
files() {
  local file
  git ls-files --cached --others --exclude-standard -- "$@" |
    while read -r file; do
      [[ ! -f $file ]] || printf '%s\n' "$file"
    done
}

check_format() {
  local tool found
  for tool in clang-format-14 clang-format; do
    # Another version would set some lines otherwise.
    if command -v "$tool" >/dev/null && "$tool" --version | grep -q 'version 14\.'; then
      found=$(files {src,tests,bench,fuzz}/'*.h' {src,tests,bench,fuzz}/'*.cpp' |
        xargs -r "$tool" --dry-run 2>&1 | sed -n 's/^\([^:]*\):[0-9].*clang-formatted.*/\1/p' | sort -u)
      [[ -z $found ]] || fault "run clang-format-14 -i on"$'\n'"$found"
      return
    fi
  done
  say "clang-format 14 is not installed: formatting not checked."
}

# Only these folders may know the toolkit.
check_toolkit() {
  local found
  found=$(files 'src/*.h' 'src/*.cpp' |
    grep -vE '^src/(vexapp|resources|dataview/table|[^/]+/dialogs)/' |
    xargs -r grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"](Q[A-Za-z0-9]*[>"/]|ui_)' || true)
  [[ -z $found ]] || fault "the core includes no Qt header:"$'\n'"$found"
}

check_leftovers() {
  local words found
  words='TO''DO|FIX''ME|X''XX'
  found=$(git grep --untracked -nIwE "$words" -- . ':!LICENSE' || true)
  [[ -z $found ]] || fault "unfinished work is told in docs or in an issue, not in a remark:"$'\n'"$found"
}

check_headers() {
  local header
  while read -r header; do
    grep -q '^#pragma once$' "$header" || fault "$header lacks #pragma once"
  done < <(files 'src/*.h' 'tests/*.h' 'bench/*.h' 'fuzz/*.h')
}

# Links between the pages of the tree.
check_links() {
  local page target
  while read -r page; do
    while read -r target; do
      [[ $target == *:* || -e ${page%/*}/${target%%#*} ]] || fault "$page links to $target, which is not there"
    done < <(grep -oE '\]\([^)# ]+' "$page" | cut -c3-)
  done < <(files '*.md' | sed 's,^[^/]*$,./&,')
}

check_scripts() {
  if ! command -v shellcheck >/dev/null; then
    say "shellcheck is not installed: shell scripts not checked."
    return
  fi
  files '*.sh' .ci/run | xargs -r shellcheck -x || fault "shellcheck found faults in the scripts above"
}

check_format
check_toolkit
check_leftovers
check_headers
check_links
check_scripts
((failed != 0)) || say "Checks of the tree passed."
exit "$failed"
