# What the scripts for people share. Sourced, not run.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$top"
jobs=$(nproc)

# A compiler cache is used where there is one.
if command -v ccache >/dev/null; then
  export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER-ccache}
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi

say() { printf '\n==> %s\n' "$*"; }

# have PROBE: a command by its name, or a header by its path below an include directory.
have() {
  case $1 in
    */* | *.h | *.hpp)
      local directory
      for directory in /usr/include /usr/local/include "/usr/include/$(uname -m)-linux-gnu"; do
        [ -e "$directory/$1" ] && return
      done
      return 1 ;;
    *) command -v "$1" >/dev/null ;;
  esac
}

# need PACKAGE=PROBE...: installs the Debian packages whose probe finds nothing, or says what is missing.
need() {
  local missing=() pair as_root=()
  for pair in "$@"; do
    have "${pair#*=}" || missing+=("${pair%%=*}")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "installing what is missing: ${missing[*]}"
  if [ "$(id -u)" != 0 ]; then
    if command -v sudo >/dev/null && { sudo -n true 2>/dev/null || [ -t 0 ]; }; then as_root=(sudo); else as_root=(false); fi
  fi
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get)
  if ! command -v apt-get >/dev/null || ! "${apt[@]}" update || ! "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; then
    echo
    echo "Missing, and it could not be installed from here: ${missing[*]}"
    echo "On Debian or Ubuntu, as root: apt-get update && apt-get install ${missing[*]}"
    exit 3
  fi
  for pair in "$@"; do
    have "${pair#*=}" || { echo "Still missing after the installation: ${pair%%=*} (${pair#*=})"; exit 3; }
  done
}

# What the library and the tool are built with, and what the tests need on top.
build_packages=(g++=g++ cmake=cmake ninja-build=ninja libcli11-dev=CLI/CLI.hpp
  nlohmann-json3-dev=nlohmann/json.hpp)
test_packages=(clang=clang++ python3=python3 pkg-config=pkg-config libgtest-dev=gtest/gtest.h
  libbenchmark-dev=benchmark/benchmark.h libssl-dev=openssl/evp.h openssl=openssl rhash=rhash
  doxygen=doxygen libgmp-dev=gmpxx.h valgrind=valgrind
  rng-tools5=rngtest)
