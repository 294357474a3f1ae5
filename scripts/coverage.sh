#!/usr/bin/env bash
# Which lines of the library the tests execute, per file and room.
# usage: scripts/coverage.sh [CTEST_ARGUMENT...]      for instance -R hash
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" "${test_packages[@]}"

say "coverage: build"
cmake --preset coverage >/dev/null
cmake --build --preset coverage -j "$jobs"
find build/coverage -name '*.gcda' -delete
say "coverage: test"
ctest --preset coverage -j "$jobs" "$@" || echo "some tests failed; what follows counts what was executed all the same"
say "coverage: lines"
python3 scripts/coverage.py build/coverage/CMakeFiles/zel_objects.dir
