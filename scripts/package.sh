#!/usr/bin/env bash
# Builds the release binaries of both architectures and writes the Windows
# Installer packages:
#   dist/TavrinEUI-<version>-x64.msi, dist/TavrinEUI-<version>-x86.msi
# and the integrator's kit, dist/TavrinEUI-<version>-kit.zip (scripts/kit.sh),
# and, beside them, each architecture's stripped DLL with its debug
# information (dist/TavrinEUI-<version>-<arch>-symbols/).
# The version is the CMake project's. Release trees: build/release-x64, build/release-x86.
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=$(pwd)
BUILD="$ROOT/${TAVRINE_BUILD_ROOT:-build}"
DIST="$ROOT/dist"
JOBS=2

say() { printf '==> %s\n' "$*"; }

source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/msi.sh"
tavrine_install_packages "${TAVRINE_PACKAGES[@]}"

GENERATOR=()
command -v ninja >/dev/null && GENERATOR=(-G Ninja)
LAUNCHER=()
command -v ccache >/dev/null && LAUNCHER=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

# release_tree ARCH TOOLCHAIN TARGET...: an optimized tree without the test
# suites, binaries stripped with their .debug files beside them.
release_tree() {
  local arch=$1 toolchain=$2; shift 2
  local dir="$BUILD/release-$arch"
  say "building the $arch release ($*)"
  cmake -S "$ROOT" -B "$dir" "${GENERATOR[@]}" "${LAUNCHER[@]}" -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/$toolchain" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTAVRINE_SPLIT_DEBUG=ON -DTAVRINE_BUILD_TESTS=OFF >/dev/null
  cmake --build "$dir" -j"$JOBS" --target "$@"
}

# The registry table generator runs under Wine: one prefix for the packaging.
wine_prefix() {
  export WINEPREFIX="$BUILD/package-prefix" WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
  if [[ ! -f $WINEPREFIX/system.reg ]]; then
    say "creating the Wine prefix for packaging"
    mkdir -p "$WINEPREFIX"
    wineboot -i >/dev/null 2>&1
    wineserver -w
  fi
}

# The 64-bit generator reads the 32-bit DLL's type library too, so packaging
# needs no 32-bit Wine.
package() {  # ARCH
  local arch=$1 bin="$BUILD/release-$1/bin"
  local name="TavrinEUI-$VERSION-$arch"
  say "packaging $name.msi"
  rm -f "$DIST/$name.msi"
  tavrine_build_msi "$arch" "$VERSION" "$bin" "$BUILD/release-x64/bin/tavrine-regtable.exe" "$DIST/$name.msi" \
    "$(cache_value TAVRINE_PRODUCT_NAME)" "$(cache_value TAVRINE_COMPANY_NAME)"
  rm -rf "$DIST/$name-symbols"
  mkdir -p "$DIST/$name-symbols"
  cp "$bin/TavrinEUI.dll" "$bin/TavrinEUI.dll.debug" "$DIST/$name-symbols/"
}

# The build's own values: version, product and company names.
cache_value() { sed -n "s/^$1:[A-Z]*=//p" "$BUILD/release-x64/CMakeCache.txt"; }

# The kit ships the reference tools and the compiled samples of both architectures.
KIT_TARGETS=(TavrinEClient TavrinECompareList tavrine docs_samples_build)
release_tree x64 mingw-w64-x86_64.cmake TavrinEUI tavrine-regtable "${KIT_TARGETS[@]}"
release_tree x86 mingw-w64-i686.cmake TavrinEUI "${KIT_TARGETS[@]}"
VERSION=$(cache_value CMAKE_PROJECT_VERSION)
mkdir -p "$DIST"
wine_prefix
package x64
package x86
wineserver -k >/dev/null 2>&1 || true

# Further packaging steps go here; each writes into "$DIST".
say "writing the integrator's kit"
"$ROOT/scripts/kit.sh" --win64 "$BUILD/release-x64" --win32 "$BUILD/release-x86" --out "$DIST"

say "done: $(cd "$DIST" && ls -d TavrinEUI-"$VERSION"-*.msi TavrinEUI-"$VERSION"-kit.zip | tr '\n' ' ')"
