#!/usr/bin/env bash
# The statistical tests of FIPS 140-2 (rngtest of rng-tools) on 8 MB of a generator's output.
# usage: check.sh PROGRAM GENERATOR
#
# One block of 2500 bytes in about 1250 fails by chance, so 3200 blocks have 2 or 3 failures; 20 and
# more come up once in 10^11 runs.
set -uo pipefail
command -v rngtest >/dev/null || { echo "rngtest is not installed"; exit 77; }
blocks=3200
most_failures=20

report=$("$1" "$2" $((blocks * 2500 + 4)) | rngtest -c $blocks 2>&1)
echo "$report"
number() { sed -n "s/^rngtest: FIPS 140-2 $1: //p" <<<"$report"; }
passed=$(number successes)
failed=$(number failures)
[ -n "$passed" ] && [ -n "$failed" ] && [ $((passed + failed)) -eq $blocks ] && [ "$failed" -le $most_failures ]
