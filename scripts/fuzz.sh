#!/usr/bin/env bash
# Builds the fuzz targets, makes a corpus and runs each target.
#   scripts/fuzz.sh [SECONDS [TARGET...]]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/lib.sh

seconds=${1:-60}
(($# == 0)) || shift
targets=("$@")
((${#targets[@]})) || targets=(vsf dsf format text text_import sav por dta sas7bdat sas7bcat xport dbf xls sql syb ifx ora db2 html sps sas "do" xlsx ods sqlite jsonl paradox sigmaplot access statistica jmp minitab
  wk1 wq1 syd ssc mat rec dct gauss dbt mb engine_syntax)

command -v clang++-14 >/dev/null || die "clang++-14 is needed (Debian packages clang-14 and libclang-rt-14-dev)"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --parallel "$(nproc)"
bin=$PWD/build/fuzz/bin
corpus=$PWD/build/fuzz/corpus
found=$PWD/build/fuzz/found
mkdir -p "$found"

# Two files in one: in front the length of the one that stands beside the other, of which at most
# 60,000 bytes are taken.
pair() {
  local beside=$1 file=$2 target=$3 length
  length=$(($(head -c 60000 "$beside" | wc -c)))
  { printf '%b' "\\0$(printf '%o' $((length % 256)))\\0$(printf '%o' $((length / 256)))" &&
    head -c 60000 "$beside" && cat "$file"; } >"$target"
}

# The first files of a corpus: other programs' small files, and what our writers make of some of the example.
seed() {
  mkdir -p "$corpus"/{vsf,dsf,format,text,text_import,sav,por,dta,sas7bdat,sas7bcat,xport,dbf,xls,sql,syb,ifx,ora,db2,html,sps,sas,do,xlsx,ods,sqlite,jsonl,paradox,sigmaplot,access,statistica,jmp,minitab,wk1,wq1,syd,ssc,mat,rec,dct,gauss,dbt,mb,engine_syntax}
  local file kind
  for file in tests/data/*.{sav,zsav,por,dta,xpt}; do
    kind=${file##*.}
    case $kind in zsav) kind=sav ;; xpt) kind=xport ;; esac
    cp "$file" "$corpus/$kind/"
  done
  for file in tests/data/survey*.sav; do
    "$bin/vexdata" import "$file" "$corpus/vsf/${file##*/}.VSF" --overwrite --quiet --keep-labels
  done
  for kind in por dta dbf xls sql syb ifx ora db2 html sps sas "do" xlsx ods sqlite jsonl wk1 wq1 syd ssc mat rec; do
    "$bin/vexdata" export "$corpus/vsf/survey.sav.VSF" "$corpus/$kind/ours.$kind" --overwrite --quiet
  done
  "$bin/vexdata" export "$corpus/vsf/survey.sav.VSF" "$corpus/xport/ours.xpt" --overwrite --quiet
  "$bin/vexdata" export "$corpus/vsf/survey.sav.VSF" "$corpus/paradox/ours.db" --overwrite --quiet
  "$bin/vexdata" export "$corpus/vsf/survey.sav.VSF" "$corpus/pair.dct" --overwrite --quiet
  pair "$corpus/pair.dat" "$corpus/pair.dct" "$corpus/dct/ours"
  { printf '\332\332\0\0\0\0\002\0\020\0\222\0\010\0%114s' '' | tr ' ' '\0' && printf 'X\0\0\0\0\0\0\0\0name\0\0\0\0\0'; } >"$corpus/pair.dht"
  printf '\0\0\0\0\0\0\370?some text' >"$corpus/pair.gauss"
  pair "$corpus/pair.dht" "$corpus/pair.gauss" "$corpus/gauss/texts"
  # Files of other programs, where there are any.
  if [[ -n ${VEX_REAL_DATA:-} ]]; then
    for kind in sigmaplot access statistica jmp minitab paradox; do
      find "$VEX_REAL_DATA/$kind" -type f -size -400k -exec cp -n -t "$corpus/$kind" {} +
    done
    local folder
    for folder in lotus:wk1 quattro:wq1 matlab:mat splus:ssc systat:syd xls:xls ods:ods xlsx:xlsx html:html sas:sas7bdat stata:dta spss:sav dbase:dbf; do
      find "$VEX_REAL_DATA/${folder%:*}" -type f -size -100k -exec cp -n -t "$corpus/${folder#*:}" {} +
    done
    pair "$VEX_REAL_DATA/sas/hadley_formats.sas7bcat" "$VEX_REAL_DATA/sas/hadley.sas7bdat" "$corpus/sas7bcat/labels"
    pair "$VEX_REAL_DATA/dbase/dbase_83.dbt" "$VEX_REAL_DATA/dbase/dbase_83.dbf" "$corpus/dbt/memo"
    pair "$VEX_REAL_DATA/paradox/CUSTOMER.MB" "$VEX_REAL_DATA/paradox/CUSTOMER.DB" "$corpus/mb/memo"
  fi
  printf '(3F8.2, 2X / A4, 2I1, H1, D10.3)' >"$corpus/format/statement"
  printf '\002\002(3F4.1)\n 1.5 225x  \n' >"$corpus/text/fixed"
  printf '\000\001name 1 2.5\n1e5 -.3D2 1e-400\n' >"$corpus/text/free"
  printf '\014\00112 3 4\n5 6\n' >"$corpus/text/matrix"
  { printf '\000%-64s' 'VEXMOR SYSTEM DATA FILE' && printf '\0\0\0\0\001\0\0\0' && head -c 400 /dev/zero; } >"$corpus/dsf/one"
  local type
  for type in 0 1 2 3 4; do
    printf '%b' "\\00$type\\0116" 'a,"b\n""c"\t;d\n1,-2.5e3 3\tNA;12x\r\n,"4","5"\n' \
      >"$corpus/text_import/type$type"
  done
  printf "SY='data.VSF'\nSE 1-3\nSC 1 > 2\nOU MA=KM XM\n" >"$corpus/engine_syntax/screening"
}
seed

for target in "${targets[@]}"; do
  say "fuzz_$target for $seconds seconds"
  ASAN_OPTIONS=allocator_may_return_null=1 "$bin/fuzz_$target" -max_total_time="$seconds" -rss_limit_mb=1024 -timeout=20 -max_len=400000 \
    -artifact_prefix="$found/${target}_" -print_final_stats=1 "$corpus/$target" 2>&1 | tail -n 12
done
