# Compiler cache for every tree when ccache is installed; sourced by the build
# scripts. Paths under the clone are hashed relative to it and the build
# folder is not hashed, so a fresh clone on the same machine hits the cache
# that an earlier clone filled.
TAVRINE_LAUNCHER=()
if command -v ccache >/dev/null; then
  export CCACHE_BASEDIR="$ROOT" CCACHE_NOHASHDIR=1
  TAVRINE_LAUNCHER=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
