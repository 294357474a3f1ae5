#!/usr/bin/env bash
# Builds the library and puts it to work on this project's own files: self-tests, digests checked
# against sha256sum, and a sealed archive opened again.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}"

say "building the library and the zel command in build/try"
cmake --preset release -B build/try -DZEL_CC_TESTS=OFF -DZEL_CC_BENCH=OFF
cmake --build build/try -j "$jobs"

say "known-answer tests and integrity: zel selftest, zel integrity"
build/try/zel selftest | tail -n 3
build/try/zel integrity

say "hashing the files of this project: zel hash"
mapfile -t files < <(find . -type f -not -path './build/*' -not -path './.git/*' | sort)
build/try/zel hash "${files[@]}" >build/try/digests.txt
head -n 3 build/try/digests.txt
echo "..."

say "checking the digests: sha256sum -c, then zel hash -c"
sha256sum --quiet -c build/try/digests.txt
build/try/zel hash -q -c build/try/digests.txt

say "sealing them and opening them again: zel encrypt, zel decrypt"
build/try/zel rand --raw 32 -f -o build/try/example.key
tar -cf build/try/files.tar "${files[@]}"
build/try/zel encrypt -k build/try/example.key -f build/try/files.tar
build/try/zel decrypt -k build/try/example.key -f -o build/try/opened.tar build/try/files.tar.zel
cmp build/try/files.tar build/try/opened.tar

bytes=$(cat "${files[@]}" | wc -c)
say "done: ${#files[@]} files, $bytes bytes; every digest agrees with sha256sum, and the sealed archive came back whole"
echo "The library is build/try/libzel_cc-3.2.so, the command build/try/zel. Try it on your own files:"
echo "  build/try/zel hash FILE..."
