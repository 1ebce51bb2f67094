# The 32-bit Windows tree (build/win32) and its suites; sourced by
# scripts/test.sh after the 64-bit suite, whose helpers (say, build_tree,
# run_tree) and totals it uses.
#
# 32-bit programs under Wine need Debian's wine32 from the i386 architecture.
# When it cannot be installed, the machine's package state is put back as it
# was (a foreign architecture whose index fails breaks every later apt-get
# update), one line says why, and the 32-bit suites count as not run.

TAVRINE_WINE32_REASON=""

tavrine_wine32_present() {
  dpkg -s wine32:i386 >/dev/null 2>&1
}

# Installs wine32:i386. On failure sets TAVRINE_WINE32_REASON to apt's first
# error line and leaves the package state as it found it.
tavrine_wine32_install() {
  local sudo=() log added=0
  [[ $(id -u) -eq 0 ]] || sudo=(sudo)
  log=$(mktemp)
  local before_i386
  before_i386=$(dpkg-query -W -f='${binary:Package}\n' 2>/dev/null | grep ':i386$' | sort)
  if ! dpkg --print-foreign-architectures | grep -qx i386; then
    "${sudo[@]}" dpkg --add-architecture i386 && added=1
  fi
  if timeout 600 "${sudo[@]}" apt-get update -q >"$log" 2>&1 &&
     ! grep -qE '^(E|W): Failed to fetch' "$log" &&
     DEBIAN_FRONTEND=noninteractive timeout 900 "${sudo[@]}" apt-get install -y -q wine32:i386 >>"$log" 2>&1 &&
     tavrine_wine32_present; then
    rm -f "$log"
    return 0
  fi
  TAVRINE_WINE32_REASON=$(grep -m1 -E '^(E|W): ' "$log" | cut -c1-300)
  [[ -n $TAVRINE_WINE32_REASON ]] || TAVRINE_WINE32_REASON="apt-get did not install wine32:i386"
  # Back to the state before: i386 packages this attempt pulled in, then the architecture.
  local after_i386 pulled
  after_i386=$(dpkg-query -W -f='${binary:Package}\n' 2>/dev/null | grep ':i386$' | sort)
  pulled=$(comm -13 <(printf '%s\n' "$before_i386") <(printf '%s\n' "$after_i386") | grep .)
  if [[ -n $pulled ]]; then
    # shellcheck disable=SC2086
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get purge -y -q $pulled >>"$log" 2>&1
  fi
  if ((added)); then
    "${sudo[@]}" dpkg --remove-architecture i386 >>"$log" 2>&1
    timeout 600 "${sudo[@]}" apt-get update -q >>"$log" 2>&1
  fi
  rm -f "$log"
  return 1
}

# The 32-bit tree: always built (its compile-time checks of the record layouts
# must hold); its host-side checks (label "host") always run, counted as one
# test, and so does the x86 package's install test without the classes; the
# suites under Wine and the classes of the x86 package only with wine32.
tavrine_win32_suite() {
  local dir="$BUILD/win32"
  if ! build_tree win32 -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-i686.cmake"; then
    status=1
    return
  fi
  if ! tavrine_wine32_present && ! tavrine_wine32_install; then
    local not_run
    not_run=$(ctest --test-dir "$dir" -N -LE host 2>/dev/null | sed -n 's/^Total Tests: //p')
    echo "win32: ${not_run:-all} 32-bit tests under Wine not run: wine32:i386 could not be installed ($TAVRINE_WINE32_REASON)"
    if ctest --test-dir "$dir" -L host --output-on-failure >"$LOGS/win32-host-test.log" 2>&1; then
      total_passed=$((total_passed + 1))
    else
      tail -n 30 "$LOGS/win32-host-test.log"
      total_failed=$((total_failed + 1)); status=1
    fi
    tavrine_x86_package_test --no-client
    return
  fi
  wineboot -u >/dev/null 2>&1
  wineserver -w
  run_tree win32 || status=1
  tavrine_x86_package_test
}

# The x86 package installed, upgraded and removed under Wine (one test).
# --no-client: without a 32-bit Wine the classes cannot be created; 64-bit
# msiexec still installs the package into the 32-bit registry view.
tavrine_x86_package_test() {
  local dir="$BUILD/win32"
  say "installer test x86 $*"
  if "$ROOT/tests/package/install_test.sh" x86 \
       "$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$dir/CMakeCache.txt")" "$dir/bin" \
       "$BUILD/win64/bin/tavrine-regtable.exe" "$dir/package-test" "$@" >"$LOGS/win32-package.log" 2>&1; then
    total_passed=$((total_passed + 1))
  else
    tail -n 30 "$LOGS/win32-package.log"
    total_failed=$((total_failed + 1)); status=1
  fi
}
