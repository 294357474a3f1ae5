#!/usr/bin/env bash
# Builds and tests everything: as shipped with GCC, under the sanitizers, with Clang, and the block
# ciphers once more with the aesni descriptors filled.
# usage: scripts/test.sh [PRESET...]     presets of CMakePresets.json; without one: the four above
set -uo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" "${test_packages[@]}"

presets=("$@")
[ $# -gt 0 ] || presets=(release sanitize clang aesni)
passed=0
failed=0
summary=()

# count ATTRIBUTE FILE: a number of the test suite in CTest's JUnit report.
count() { sed -n "s/.*[[:space:]]$1=\"\([0-9]*\)\".*/\1/p" "$2" | head -n 1; }

# run PRESET: configures, builds and tests it; sets the outcome in `summary`.
run() {
  local preset=$1 report=$top/build/$1/tests.xml started=$SECONDS total bad
  say "$preset: configure"
  cmake --preset "$preset" || return 1
  say "$preset: build"
  cmake --build --preset "$preset" -j "$jobs" || return 1
  say "$preset: test"
  rm -f "$report"
  ctest --preset "$preset" -j "$jobs" --output-junit "$report"
  [ -f "$report" ] || return 1
  total=$(count tests "$report")
  bad=$(count failures "$report")
  local skipped=$(($(count skipped "$report") + $(count disabled "$report")))
  passed=$((passed + total - bad - skipped))
  failed=$((failed + bad))
  summary+=("$(printf '%-10s %4d passed, %d failed, %d skipped, %d s' "$preset" $((total - bad - skipped)) "$bad" "$skipped" $((SECONDS - started)))")
}

for preset in "${presets[@]}"; do
  if ! run "$preset"; then
    failed=$((failed + 1))
    summary+=("$(printf '%-10s did not build' "$preset")")
  fi
done

say "summary"
printf '%s\n' "${summary[@]}"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
