#!/usr/bin/env bash
# Runs one program of this folder after a look at how it was linked.
# usage: check_program.sh PROGRAM KIND...
#   copies       it holds the copy of a descriptor (R_X86_64_COPY)
#   no-copies    it holds none
#   fixed        it is linked at a fixed address (not PIE); else it must be PIE
#   owns NAME    it exports NAME, and so takes it away from the library
#   crypto-first, crypto-last  libcrypto stands before the library in its NEEDED, or behind it
set -euo pipefail
program=$1
shift
fail() { echo "FAIL: $program: $*"; exit 1; }

relocations=$(readelf -rW "$program")
type=DYN
while [ $# -gt 0 ]; do
  case $1 in
    copies) grep -q 'R_X86_64_COPY.* sha384' <<<"$relocations" || fail "no copy relocation" ;;
    no-copies) ! grep -q 'R_X86_64_COPY.* sha384' <<<"$relocations" || fail "a copy relocation" ;;
    fixed) type=EXEC ;;
    owns)
      readelf -W --dyn-syms "$program" | awk -v n="$2" '$8 == n && $7 != "UND" {f = 1} END {exit !f}' ||
        fail "does not export $2"
      shift ;;
    crypto-first | crypto-last)
      needed=$(readelf -dW "$program" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -E 'libcrypto|libzel' | tr '\n' ' ')
      expected='libcrypto*libzel_cc*'
      [ "$1" = crypto-first ] || expected='libzel_cc*libcrypto*'
      # shellcheck disable=SC2053  # a pattern
      [[ $needed == $expected ]] || fail "NEEDED is $needed" ;;
    *) fail "unknown kind $1" ;;
  esac
  shift
done
readelf -hW "$program" | grep -q "Type: *$type " || fail "is not of type $type"
exec "$program"
