# Debian packages for the builds, the tests and the demo; sourced by
# scripts/test.sh and scripts/demo.sh.

# Everything either script needs: compilers, GoogleTest (the trees are
# configured with their tests), mingw-w64 and widl, Wine, Xvfb, clang, zip
# (the integrator's kit) and unzip (its test), wixl and msitools (the packages).
TAVRINE_PACKAGES=(g++ cmake ninja-build libgtest-dev libgmock-dev googletest libbenchmark-dev
                  mingw-w64 mingw-w64-tools libwine-dev wine wine64 xvfb xauth clang zip unzip
                  wixl msitools)

# Installs the packages of the arguments that dpkg does not know yet, as root
# or through sudo. Returns non-zero when the installation failed.
tavrine_install_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg -s "$package" >/dev/null 2>&1 || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  local sudo=()
  [[ $(id -u) -eq 0 ]] || sudo=(sudo)
  printf '==> installing: %s\n' "${missing[*]}"
  if ! "${sudo[@]}" apt-get update -qq ||
     ! DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq "${missing[@]}" >/dev/null; then
    echo "package installation failed" >&2
    return 1
  fi
}
