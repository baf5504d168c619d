# shellcheck shell=bash
# Sourced by the scripts beside it: goes to the root of the source tree and says each step.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]] && command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

step() { printf '\n== %s (%d s)\n' "$*" "$SECONDS"; }

fail() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# build PRESET [TARGET...]: what the preset builds, or these of its targets; quiet unless it fails.
build() {
  local preset=$1 log=build/$1.log
  shift
  mkdir -p build
  local targets=(${1:+--target "$@"})
  { cmake --preset "$preset" && cmake --build --preset "$preset" "${targets[@]}"; } >"$log" 2>&1 || {
    grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking)' "$log" | tail -n 100
    fail "the build of preset $preset failed; all of it is in $log"
  }
}

# The project's own C++ files.
sources() { git ls-files -co --exclude-standard -- '*.h' '*.cpp'; }
