#!/usr/bin/env bash
# Installs into an empty prefix, moves it, and builds and runs outside programs against it: C and
# C++, the shared and the static library, found by the CMake package and by pkg-config.
# usage: check.sh BUILD_DIR CMAKE CC CXX WORK_DIR
set -euo pipefail
build=$1 cmake=$2 cc=$3 cxx=$4 work=$5
here=$(cd "$(dirname "$0")" && pwd)
digest=ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad
checked=0

fail() { echo "FAIL: $*"; exit 1; }

# runs WHAT PROGRAM NEEDED: the program gives the digest and needs the shared library or not.
runs() {
  local needed found=no
  needed=$(readelf -d "$2")
  [[ $needed == *"[libzel_cc-3.2.so]"* ]] && found=yes
  [ "$found" = "$3" ] || fail "$1: needs the shared library: $found, expected $3"
  [[ $1 != C\ * || $needed != *stdc++* ]] || fail "$1: a C program needs the C++ runtime"
  [ "$("$2")" = "$digest" ] || fail "$1: wrong output"
  echo "ok: $1"
  checked=$((checked + 1))
}

rm -rf "$work"
mkdir -p "$work"
# Stripped, as packages do: the library's companion must be that of the file that was installed.
"$cmake" --install "$build" --strip --prefix "$work/first" >"$work/install.log" || { cat "$work/install.log"; exit 1; }
mv "$work/first" "$work/prefix"
prefix=$work/prefix
libdir=$(dirname "$(find "$prefix" -name libzel_cc-3.2.so)")
for file in "$libdir/libzel_cc-3.2.so" "$libdir/libzel_cc-3.2.a" "$prefix/include/zel_cc.h"; do
  [ -f "$file" ] && [ ! -L "$file" ] || fail "not installed as a plain file: $file"
done
readelf -S "$libdir/libzel_cc-3.2.so" | grep -q symtab && fail "not stripped"
if [ -x "$prefix/bin/zel" ]; then
  [ "$("$prefix/bin/zel" integrity)" = "$libdir/libzel_cc-3.2.so: OK" ] || fail "the installed library does not verify"
fi
[ -z "$(find "$prefix" -type l)" ] || fail "the prefix holds symbolic links"

for language in C CXX; do
  "$cmake" -S "$here" -B "$work/$language" -DLANGUAGE=$language -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" >"$work/$language.log" 2>&1 &&
    "$cmake" --build "$work/$language" >>"$work/$language.log" 2>&1 || { cat "$work/$language.log"; exit 1; }
  runs "$language program, CMake package, shared" "$work/$language/outside_shared" yes
  runs "$language program, CMake package, static" "$work/$language/outside_static" no
  runs "$language program, CMake package, strong rand" "$work/$language/outside_strong_rand" yes
done

if command -v pkg-config >/dev/null; then
  export PKG_CONFIG_PATH=$libdir/pkgconfig
  cp "$here/outside.c" "$work/outside.cpp"
  read -ra flags <<<"$(pkg-config --cflags --libs zel_cc)"
  read -ra static <<<"$(pkg-config --static --cflags --libs zel_cc)"
  archive=$(pkg-config --variable=archive zel_cc)
  read -ra cflags <<<"$(pkg-config --cflags zel_cc)"
  "$cc" -std=c11 -DSTRONG_RAND -I"$prefix/share/zel_cc" "$here/outside.c" "${flags[@]}" "-Wl,-rpath,$libdir" \
    -Wl,--export-dynamic-symbol=rand,--export-dynamic-symbol=srand \
    "$(pkg-config --variable=strong_rand zel_cc)" -ldl -o "$work/pc_strong_rand"
  runs "C program, pkg-config, strong rand" "$work/pc_strong_rand" yes
  for language in C CXX; do
    if [ $language = C ]; then compiler=("$cc" -std=c11) source=$here/outside.c; else compiler=("$cxx" -std=c++17) source=$work/outside.cpp; fi
    "${compiler[@]}" "$source" "${flags[@]}" "-Wl,-rpath,$libdir" -o "$work/pc_shared_$language"
    "${compiler[@]}" -static "$source" "${static[@]}" -o "$work/pc_static_$language"
    "${compiler[@]}" "$source" "${cflags[@]}" "$archive" -o "$work/pc_archive_$language"
    runs "$language program, pkg-config, shared" "$work/pc_shared_$language" yes
    runs "$language program, pkg-config --static" "$work/pc_static_$language" no
    runs "$language program, pkg-config, archive" "$work/pc_archive_$language" no
  done
else
  fail "pkg-config is not installed"
fi
if [ -e "$prefix/bin/zel" ]; then
  [ "$(printf abc | "$prefix/bin/zel" hash -q - | cut -d' ' -f1)" = "$digest" ] || fail "the installed zel does not hash"
  checked=$((checked + 1))
fi
echo "$checked programs run"
