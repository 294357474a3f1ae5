#!/usr/bin/env bash
# Every public header compiles alone, without a warning, as C and as C++, with every compiler here.
# usage: headers.sh INCLUDE_DIR
set -euo pipefail
cd "$1"
compiled=0
for compiler in gcc clang; do
  if ! command -v "$compiler" >/dev/null; then
    echo "$compiler is not installed: left out"
    continue
  fi
  for standard in c11 c++17; do
    language=c
    [[ $standard != c++* ]] || language=c++
    for header in zel_cc.h zel_cc/*.h; do
      "$compiler" -x $language -std=$standard -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I. \
        -include "$header" /dev/null || { echo "FAIL: $compiler -std=$standard $header"; exit 1; }
      compiled=$((compiled + 1))
    done
  done
done
echo "$compiled compilations"
[ "$compiled" -gt 0 ]
