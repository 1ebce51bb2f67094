# Windows Installer packages of TavrinEUI.dll with wixl; sourced by
# scripts/package.sh and the package install test.

# Fixed per architecture for the life of the product: a newer package finds
# and replaces the older one by it. x86 and x64 differ so both can be installed.
TAVRINE_UPGRADE_CODE_x64=C6777519-4A7D-47B2-A5C4-EAC3D34C3D37
TAVRINE_UPGRADE_CODE_x86=7B8FEFFE-F32B-4875-A7A2-52D2825457F9

# A product code of its own for every version and architecture, the same on
# every build of it: a name-based (SHA-1) UUID.
tavrine_product_code() {  # ARCH VERSION
  local hash
  hash=$(printf 'TavrinEUI %s %s' "$1" "$2" | sha1sum)
  printf '%s-%s-5%s-%x%s-%s\n' "${hash:0:8}" "${hash:8:4}" "${hash:13:3}" \
    $(((16#${hash:16:1} & 3) | 8)) "${hash:17:3}" "${hash:20:12}" | tr a-f A-F
}

# How a Wine program sees a Linux path.
tavrine_winpath() {
  local p
  p=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
  printf 'Z:%s' "${p//\//\\}"
}

# tavrine_build_msi ARCH VERSION BIN_DIR REGTABLE OUT [PRODUCT_NAME MANUFACTURER]
# ARCH x64 or x86. BIN_DIR holds TavrinEUI.dll; REGTABLE is a tavrine-regtable.exe
# that Wine can run (the 64-bit one reads a 32-bit DLL's type library as well).
# Runs Wine in the caller's WINEPREFIX.
tavrine_build_msi() {
  local arch=$1 version=$2 bin=$3 regtable=$4 out=$5
  local product=${6:-TavrinEUI} manufacturer=${7:-Brennick}
  local root work win64 program_files
  root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
  case $arch in
    x64) win64=yes; program_files=ProgramFiles64Folder ;;
    x86) win64=no; program_files=ProgramFilesFolder ;;
    *) echo "tavrine_build_msi: unknown architecture $arch" >&2; return 1 ;;
  esac
  local upgrade_var=TAVRINE_UPGRADE_CODE_$arch
  work=$(mktemp -d) || return 1
  if ! WINEDEBUG=-all "${TAVRINE_WINE:-wine}" "$regtable" "$(tavrine_winpath "$bin/TavrinEUI.dll")" \
         "$(tavrine_winpath "$work")\\com-registry.wxi" || [[ ! -s $work/com-registry.wxi ]]; then
    echo "tavrine_build_msi: the registry table could not be made from $bin/TavrinEUI.dll" >&2
    rm -rf "$work"; return 1
  fi
  # wixl takes file sources relative to the folder it runs in: the staging folder.
  mkdir -p "$work/Lang" "$(dirname "$out")"
  out=$(cd "$(dirname "$out")" && pwd)/$(basename "$out")
  cp "$bin/TavrinEUI.dll" "$root/packaging/Configuration.ini" "$root/packaging/TavrinEUI.wxs" "$work/" &&
    cp "$root"/data/Lang/*.ini "$work/Lang/" || { rm -rf "$work"; return 1; }
  if ! (cd "$work" && wixl -a "$arch" -o "$out" \
         -D Arch="$arch" -D Version="$version" -D ProductCode="$(tavrine_product_code "$arch" "$version")" \
         -D UpgradeCode="${!upgrade_var}" -D ProductName="$product" -D Manufacturer="$manufacturer" \
         -D ProductFolder="$product" -D ProgramFilesFolder="$program_files" -D Win64="$win64" \
         TavrinEUI.wxs); then
    echo "tavrine_build_msi: wixl failed" >&2
    rm -rf "$work"; return 1
  fi
  rm -rf "$work"
}
