# shellcheck shell=bash
# The other scripts source this file. It changes to the root of the source tree.
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

# build PRESET [TARGET...]: builds all targets of the preset, or only these; quiet unless it fails.
build() {
  local preset=$1 log=build/$1.log
  shift
  mkdir -p build
  local targets=(${1:+--target "$@"})
  { cmake --preset "$preset" && cmake --build --preset "$preset" "${targets[@]}"; } >"$log" 2>&1 || {
    grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking)' "$log" | tail -n 100
    fail "the build of preset $preset failed; see $log"
  }
}

# The project's own C++ files.
sources() { git ls-files -co --exclude-standard -- '*.h' '*.cpp'; }
