#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the build into a temporary prefix, as "cmake --install" lays it out, and uses it as a
# host program's developer would: the installed rkparam makes a project, a small Qt host is
# compiled against the installed header and library through pkg-config and runs the parameter
# mode on it, ending the menu with End; a CMake project finds the package.
#
#   install_host.sh BUILD-DIR SOURCE-DIR CXX SANITIZE(0|1)
set -euo pipefail
build=$1 source=$2 cxx=$3 sanitize=$4
here=$(cd "$(dirname "$0")" && pwd)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
fail() { echo "install_host: $*" >&2; exit 1; }

prefix=$tmp/prefix
cmake --install "$build" --prefix "$prefix" >"$tmp/install.log" || { cat "$tmp/install.log"; fail "cmake --install failed"; }

# The layout: the library with its SONAME, header, pkg-config and CMake files, rkparam, man
# page, desktop entry and icon.
pc=$(find "$prefix" -name gantrixa0j.pc)
[ -n "$pc" ] || fail "no gantrixa0j.pc installed"
libdir=$(dirname "$(dirname "$pc")")
lib=$(find "$libdir" -maxdepth 1 -name 'libGantrixA0J.so.*.*' -type f)
[ -n "$lib" ] || fail "no versioned libGantrixA0J.so in $libdir"
soname=$(readelf -d "$lib" | sed -n 's/.*Library soname: \[\(.*\)\].*/\1/p')
[ "$soname" = "libGantrixA0J.so.1" ] || fail "SONAME is \"$soname\""
[ -L "$libdir/$soname" ] && [ -L "$libdir/libGantrixA0J.so" ] || fail "missing library links"
for f in include/GantrixA0J.h bin/rkparam share/man/man1/rkparam.1.gz \
         share/applications/rkparam.desktop share/icons/hicolor/scalable/apps/gantrixa0j.svg; do
    [ -f "$prefix/$f" ] || fail "$f not installed"
done
[ -f "$libdir/cmake/GantrixA0J/GantrixA0JConfig.cmake" ] || fail "no CMake package config"
# The workbook templates are data of the prefix, where the library's own relative path to
# them leads, and not beside the library.
templates=$prefix/share/gantrixa0j/templates
relative=$(strings "$lib" | grep -x '[./]*/share/gantrixa0j/templates' || true)
[ -n "$relative" ] || fail "the library names no path to its templates"
[ "$(realpath -m "$libdir/$relative")" = "$(realpath "$templates")" ] ||
    fail "the library looks for its templates in $libdir/$relative, not $templates"
for t in "$source"/data/templates/*; do
    [ -f "$templates/$(basename "$t")" ] || fail "template $(basename "$t") not in $templates"
    [ ! -e "$libdir/$(basename "$t")" ] || fail "template $(basename "$t") beside the library"
done

# The installed rkparam runs from its prefix and makes a project.
export LD_LIBRARY_PATH=$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
"$prefix/bin/rkparam" new --cpu A3U "$tmp/project" >/dev/null || fail "rkparam new failed"
before=$(stat -c %Y.%i "$tmp/project/param.tmp")

# A host built through pkg-config alone.
export PKG_CONFIG_PATH=$(dirname "$pc")
flags=(-std=c++17 -fPIC)
[ "$sanitize" = 1 ] && flags+=(-fsanitize=address,undefined)
# shellcheck disable=SC2046
"$cxx" "${flags[@]}" "$here/host.cpp" -o "$tmp/host" \
    $(pkg-config --cflags --libs gantrixa0j Qt6Widgets) || fail "the host does not build"
out=$("$tmp/host" A3U "$tmp/project") || fail "the host's run: $out"
case $out in "status 0 result 1 changed 1 \"\"") ;; *) fail "the host's run: $out" ;; esac
# Saved: a new param.tmp of 3072 bytes is in place and no working file is left.
[ "$(stat -c %s "$tmp/project/param.tmp")" = 3072 ] || fail "param.tmp is not 3072 bytes"
[ "$(stat -c %Y.%i "$tmp/project/param.tmp")" != "$before" ] || fail "param.tmp was not saved"
left=$(cd "$tmp/project" && ls -A | grep -v -x -e param.tmp -e rkparam.cpu -e .param.lock || true)
[ -z "$left" ] || fail "left in the project: $left"

# find_package(GantrixA0J) from the prefix.
cmake -S "$here" -B "$tmp/cmake-host" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" \
    >"$tmp/cmake.log" 2>&1 || { cat "$tmp/cmake.log"; fail "find_package(GantrixA0J) failed"; }
echo "install_host: installed, built a host through pkg-config and find_package, saved"
