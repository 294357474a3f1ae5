#!/usr/bin/env bash
# Builds the library and hashes this project's own files with it, checked against sha256sum.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}"

say "building the library and the zel command in build/try"
cmake --preset release -B build/try -DZEL_CC_TESTS=OFF -DZEL_CC_BENCH=OFF
cmake --build build/try -j "$jobs"

say "hashing the files of this project: zel hash"
mapfile -t files < <(find . -type f -not -path './build/*' -not -path './.git/*' | sort)
build/try/zel hash "${files[@]}" >build/try/digests.txt
head -n 3 build/try/digests.txt
echo "..."

say "checking the digests: sha256sum -c, then zel hash -c"
sha256sum --quiet -c build/try/digests.txt
build/try/zel hash -q -c build/try/digests.txt

bytes=$(cat "${files[@]}" | wc -c)
say "done: ${#files[@]} files, $bytes bytes; every digest agrees with sha256sum"
echo "The library is build/try/libzel_cc-3.2.so, the command build/try/zel. Try it on your own files:"
echo "  build/try/zel hash FILE..."
