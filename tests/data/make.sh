#!/usr/bin/env bash
# Makes the files of this folder anew. Needs pspp and R with the packages haven and foreign (Debian: pspp,
# r-cran-haven, r-cran-foreign). Headers carry the time of writing, so the bytes differ from run to run; the
# data do not. Prints what R reads back, to compare with README.md.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
export LC_ALL=C.UTF-8 TZ=UTC

pspp make.sps
Rscript make.R
Rscript check.R
