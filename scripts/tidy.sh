#!/usr/bin/env bash
# The formatter and clang-tidy over the library, the tool and the benchmarks. Takes minutes.
# usage: scripts/tidy.sh [FILE.cpp...]     without files: everything
set -uo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" "${test_packages[@]}" clang-tidy=clang-tidy clang-format=clang-format

say "clang-format"
bad=0
git ls-files '*.cpp' '*.hpp' '*.h' '*.c' | xargs clang-format --dry-run -Werror || bad=1

say "clang-tidy"
cmake --preset clang >/dev/null || exit 1
files=("$@")
[ $# -gt 0 ] || mapfile -t files < <(git ls-files base core hash cipher mint rng pk keyshare tools bench | grep '\.cpp$')
known=()
for file in "${files[@]}"; do
  if grep -qF "\"$top/$file\"" build/clang/compile_commands.json; then known+=("$file"); else echo "not built here: $file"; fi
done
printf '%s\n' "${known[@]}" | xargs -P "${TIDY_JOBS:-$jobs}" -I{} sh -c 'echo "tidy {}"; clang-tidy -p build/clang --quiet {} 2>/dev/null' || bad=1

if [ $bad -eq 0 ]; then say "clean: ${#known[@]} files"; else say "not clean"; fi
exit $bad
