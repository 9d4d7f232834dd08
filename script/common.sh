# Shared by the scripts of this folder: sourced, not run. Works from the top of the tree.
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cores=$(nproc 2>/dev/null || echo 2)

have() { command -v "$1" >/dev/null 2>&1; }

say() { printf '\n== %s\n' "$*"; }

# A second build of the same sources should not compile them again.
if have ccache; then
  export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# Wine keeps its files under build/, so that the programs run without a home directory, and says nothing of its
# own. It starts neither its .NET nor its HTML engine: nothing here needs them, and both ask to be installed.
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' WINEARCH=win64

# The program that runs 64-bit Windows programs, as cmake/mingw-w64.cmake looks for it.
find_wine() {
  local name
  for name in wine64 /usr/lib/wine/wine64 wine; do
    have "$name" && { command -v "$name"; return; }
  done
  return 1
}

# Makes Wine's folder once: the first start of Wine takes seconds, which would count as a test's own time.
prepare_wine() {
  local wine
  wine=$(find_wine) || return 1
  mkdir -p build
  [ -f "$WINEPREFIX/system.reg" ] || timeout 180 "$wine" wineboot --init >/dev/null 2>&1
  timeout 60 "$wine" cmd /c exit 0 >/dev/null 2>&1
}
