# Functions that run.sh, test.sh and the other scripts share; sourced, not run. All expect the root of the
# checkout as the current folder.
# shellcheck shell=bash

say() { printf '== %s\n' "$*"; }

die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# The packages of scripts/packages.txt that are not installed, one a line.
missing_packages() {
  local wanted
  wanted=$(awk '!/^#/ && NF { print $1 }' scripts/packages.txt)
  # A package that dpkg has never heard of makes dpkg-query fail; the rest is still answered.
  # shellcheck disable=SC2086
  comm -23 <(sort <<<"$wanted") \
    <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
      sed -n 's/^installed //p' | sort -u)
}

# Installs what is missing; asks the package manager for nothing when nothing is.
install_missing() {
  if ! command -v dpkg-query >/dev/null; then
    say "This is not a Debian system: install what scripts/packages.txt names by its own means."
    return
  fi
  local missing
  missing=$(missing_packages)
  [[ -n $missing ]] || return 0
  # shellcheck disable=SC2086
  set -- $missing
  local as_root=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null ||
      die "these packages are missing, and neither root nor sudo is at hand to install them: $*"
    as_root=(sudo)
  fi
  say "Installing: $*"
  # A list that cannot be refreshed (some other source is down) need not keep these packages away.
  "${as_root[@]}" apt-get update -qq || say "apt-get update failed; trying with the lists that are there."
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -qq -o Dpkg::Use-Pty=0 "$@" >/dev/null ||
    die "apt-get could not install: $*"
}

# build TARGET...: configures the preset "release" and builds the targets ("all" for everything).
build() {
  [[ -d build/release ]] || say "Building for the first time: this takes some minutes."
  local log
  log=$(mktemp)
  if ! cmake --preset release >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    die "the build could not be configured (see above)"
  fi
  rm -f "$log"
  cmake --build --preset release --parallel "$(nproc)" --target "$@"
}
