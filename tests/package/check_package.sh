#!/bin/sh
# Installs a build of rkBaseQt into a scratch folder, moves the installed tree to another folder,
# and proves that an outside project can use the moved files alone (find_package +
# target_link_libraries, and pkg-config) and that the outside program and the installed rktool
# start with a clean environment: no LD_LIBRARY_PATH, the libraries found through RUNPATH.
#
# check_package.sh <cmake> <build dir> <outside project> <generator> <c++ compiler> <libdir>
#                  <config> [<Qt5_DIR>] [<source dir>] [<compiler and linker flags>]
#
# Everything is written below <build dir>/package-check.XXXXXX. The install runs with DESTDIR
# inside that folder as well, so even a destination given as an absolute path cannot write
# elsewhere; such a file is reported as an error. The folder is removed when all checks pass and
# kept for inspection otherwise.
set -eu

cmake=$1
build=$2
outside=$3
generator=$4
cxx=$5
libdir=$6
config=${7:-}
qtdir=${8:-}
source=${9:-}
flags=${10:-}

fail() {
    echo "package check FAILED: $*" >&2
    echo "(files kept in $work)" >&2
    exit 1
}

case $libdir in
/*) echo "package check FAILED: library folder '$libdir' is absolute, so the install cannot be relocated" >&2; exit 1 ;;
esac

work=$(mktemp -d "$build/package-check.XXXXXX")
stage=$work/stage
prefix=$work/prefix
root=$stage$prefix

echo "== install into $root"
DESTDIR=$stage "$cmake" --install "$build" --prefix "$prefix" ${config:+--config "$config"} >"$work/install.log" 2>&1 ||
    { cat "$work/install.log" >&2; fail "cmake --install"; }

outsideFiles=$(cd "$stage" && find . -type f ! -path ".$prefix/*")
[ -z "$outsideFiles" ] || fail "files installed outside the prefix: $outsideFiles"

for f in include/rkBaseQt/rkBaseQt.h include/rkBaseQt/rkbaseqt_export.h include/rkBaseQt/rkbase_export.h \
    include/rkBaseQt/rkBaseQtVersion.h \
    include/rkBaseQt/units/UnitManager.h include/rkBaseQt/frame/rkProductInfo.h include/rkBaseQt/core/rkDestructor.h \
    "$libdir/cmake/rkBaseQt/rkBaseQtConfig.cmake" "$libdir/cmake/rkBaseQt/rkBaseQtConfigVersion.cmake" \
    "$libdir/cmake/rkBaseQt/rkBaseQtTargets.cmake" "$libdir/pkgconfig/rkBaseQt.pc"; do
    [ -f "$root/$f" ] || fail "not installed: $f"
done
# Move the tree: nothing installed may depend on the prefix it was installed to.
moved=$work/moved/elsewhere
mkdir -p "$work/moved"
mv "$root" "$moved"
root=$moved

# A clean environment for the programs: sanitizer settings pass through, library paths do not.
clean_env() {
    env -i PATH=/usr/bin:/bin HOME="$work" LC_ALL=C QT_QPA_PLATFORM=offscreen \
        ${ASAN_OPTIONS:+ASAN_OPTIONS="$ASAN_OPTIONS"} ${LSAN_OPTIONS:+LSAN_OPTIONS="$LSAN_OPTIONS"} \
        ${UBSAN_OPTIONS:+UBSAN_OPTIONS="$UBSAN_OPTIONS"} "$@"
}

echo "== RUNPATH of the installed binaries"
for f in "$root/bin/rktool" "$root/$libdir/librkBaseQt.so" "$root/$libdir/librkBase.so"; do
    [ -e "$f" ] || fail "not installed: $f"
    runpath=$(readelf -d "$f" | sed -n 's/.*(R[UN]*PATH).*\[\(.*\)\]/\1/p')
    echo "$(basename "$f"): $runpath"
    case $runpath in *'$ORIGIN'*) ;; *) fail "$f has no \$ORIGIN RUNPATH ($runpath)" ;; esac
    case $runpath in *"$build"*|*"$work"*) fail "$f names a build or install folder in its RUNPATH: $runpath" ;; esac
done

echo "== the moved rktool, clean environment"
version=$(clean_env "$root/bin/rktool" version) || fail "installed rktool does not start: $version"
echo "$version"
case $version in *2016.2.2*) ;; *) fail "installed rktool printed no version: $version" ;; esac

private=$(cd "$root" && find . -name '*_p.h')
[ -z "$private" ] || fail "private headers installed: $private"

# The package must not point back into the build or source tree.
for tree in "$build" "$source"; do
    [ -n "$tree" ] || continue
    leaks=$(grep -rl -- "$tree" "$root/$libdir/cmake" "$root/$libdir/pkgconfig" 2>/dev/null || true)
    [ -z "$leaks" ] || fail "installed package files name $tree: $leaks"
done

echo "== configure and build the outside project"
"$cmake" -S "$outside" -B "$work/build" -G "$generator" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$root" \
    ${config:+-DCMAKE_BUILD_TYPE="$config"} ${qtdir:+-DQt5_DIR="$qtdir"} \
    ${flags:+"-DCMAKE_CXX_FLAGS=$flags"} ${flags:+"-DCMAKE_EXE_LINKER_FLAGS=$flags"} >"$work/configure.log" 2>&1 ||
    { cat "$work/configure.log" >&2; fail "configuring the outside project"; }
"$cmake" --build "$work/build" ${config:+--config "$config"} >"$work/build.log" 2>&1 ||
    { cat "$work/build.log" >&2; fail "building the outside project"; }

app=$work/build/app
[ -x "$app" ] || app=$work/build/$config/app
[ -x "$app" ] || fail "outside program not built"

echo "== run it, clean environment"
clean_env "$app" || fail "outside program"

echo "== pkg-config"
command -v pkg-config >/dev/null 2>&1 || fail "pkg-config not found"
export PKG_CONFIG_PATH="$root/$libdir/pkgconfig"
cflags=$(pkg-config --cflags rkBaseQt) || fail "pkg-config --cflags rkBaseQt"
libs=$(pkg-config --libs rkBaseQt) || fail "pkg-config --libs rkBaseQt"
echo "cflags: $cflags"
echo "libs:   $libs"
found=
for flag in $cflags; do
    case $flag in -I*) [ -f "${flag#-I}/rkBaseQt.h" ] && found=yes ;; esac
done
[ -n "$found" ] || fail "no -I folder of 'pkg-config --cflags rkBaseQt' holds the installed rkBaseQt.h"
found=
for flag in $libs; do
    case $flag in -L*) [ -e "${flag#-L}/librkBaseQt.so" ] && found=yes ;; esac
done
[ -n "$found" ] || fail "no -L folder of 'pkg-config --libs rkBaseQt' holds the installed librkBaseQt.so"

rm -rf "$work"
echo "package check passed"
