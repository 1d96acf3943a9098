#!/bin/sh
# Builds the Debian package of a finished build with CPack, checks what it holds and what it
# depends on, extracts it into a scratch folder and runs the extracted rktool with a clean
# environment.
#
# check_deb.sh <cpack> <build dir> <version>
#
# Everything is written below <build dir>/deb-check.XXXXXX, removed when all checks pass.
set -eu

cpack=$1
build=$2
version=$3

work=$(mktemp -d "$build/deb-check.XXXXXX")
fail() {
    echo "Debian package check FAILED: $*" >&2
    echo "(files kept in $work)" >&2
    exit 1
}

echo "== cpack -G DEB"
"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log" >&2; fail "cpack"; }
deb=$(ls "$work"/out/rkbaseqt_"$version"_*.deb 2>/dev/null | head -n 1)
[ -n "$deb" ] || { cat "$work/cpack.log" >&2; fail "no rkbaseqt_${version}_*.deb written"; }
echo "$(basename "$deb"): $(wc -c <"$deb") bytes"

echo "== control"
dpkg-deb -f "$deb" Package Version Architecture Depends
depends=$(dpkg-deb -f "$deb" Depends)
# Found by dpkg-shlibdeps from the binaries, not written by hand.
for lib in libqt5core5a libc6 libstdc++6; do
    case $depends in *"$lib"*) ;; *) fail "Depends lacks $lib: $depends" ;; esac
done

echo "== contents"
dpkg-deb -c "$deb" >"$work/contents.txt" || fail "dpkg-deb -c"
for f in ./usr/bin/rktool ./usr/lib/librkBaseQt.so.$version ./usr/lib/librkBase.so.$version \
    ./usr/include/rkBaseQt/rkBaseQt.h ./usr/include/rkBaseQt/rkBaseQtVersion.h \
    ./usr/include/rkBaseQt/units/UnitManager.h ./usr/lib/cmake/rkBaseQt/rkBaseQtConfig.cmake \
    ./usr/lib/pkgconfig/rkBaseQt.pc; do
    grep -q " $f\$\| $f ->" "$work/contents.txt" || fail "package lacks $f"
done
if grep -q '_p\.h$' "$work/contents.txt"; then fail "package holds private headers"; fi
if grep -v ' \./usr/' "$work/contents.txt" | grep -qv ' \./$'; then fail "package writes outside /usr"; fi
wc -l <"$work/contents.txt" | sed 's/^/entries: /'

echo "== extract and run"
dpkg-deb -x "$deb" "$work/root" || fail "dpkg-deb -x"
out=$(env -i PATH=/usr/bin:/bin HOME="$work" LC_ALL=C "$work/root/usr/bin/rktool" version 2>&1) ||
    fail "extracted rktool does not start: $out"
case $out in *"Version number         : $version"*) ;; *) fail "extracted rktool printed: $out" ;; esac
echo "$out" | grep 'Version number'

rm -rf "$work"
echo "Debian package check passed"
