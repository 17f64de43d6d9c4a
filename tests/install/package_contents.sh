#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The three Debian packages hold between them exactly what "cmake --install" lays out (its
# install manifest), each file once and in the package it belongs to, with the dependencies
# among them. CPack makes them from the build without dpkg-shlibdeps, so that dpkg-deb is
# the one Debian tool needed; scripts/package makes the real ones and runs lintian.
#
#   package_contents.sh BUILD-DIR
set -euo pipefail
build=$1
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
fail() { echo "package_contents: $*" >&2; exit 1; }

cpack --config "$build/CPackConfig.cmake" -B "$tmp/cpack" -D CPACK_DEBIAN_PACKAGE_SHLIBDEPS=OFF \
    -D CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS=OFF >"$tmp/cpack.log" 2>&1 ||
    { cat "$tmp/cpack.log"; fail "cpack failed"; }
DESTDIR="$tmp/root" cmake --install "$build" --prefix /usr >"$tmp/install.log" ||
    { cat "$tmp/install.log"; fail "cmake --install failed"; }
sed -e "s|^$tmp/root||" -e "s|^|.|" "$build/install_manifest.txt" | sort >"$tmp/manifest"

# The files of each package (dpkg-deb --contents lists them as tar -tv does; links as
# "name -> target", directories ending in "/").
for package in libgantrixa0j1 libgantrixa0j-dev rkparam; do
    deb=$(ls "$tmp/cpack/${package}"_*.deb 2>/dev/null) || fail "no package $package"
    dpkg-deb --contents "$deb" | sed -E 's/^([^ ]+ +){5}//; s/ -> .*//' | grep -v '/$' |
        sort >"$tmp/$package"
done
cd "$tmp"
sort libgantrixa0j1 libgantrixa0j-dev rkparam | uniq -d >twice
[ ! -s twice ] || fail "in two packages: $(cat twice)"
sort libgantrixa0j1 libgantrixa0j-dev rkparam | diff manifest - >difference ||
    fail "installed (<) and packaged (>) differ: $(cat difference)"

# package, how many files, the pattern they match
while read -r package count pattern; do
    found=$(grep -c -E "$pattern" "$package" || true)
    [ "$found" = "$count" ] || fail "$package holds $found files matching $pattern, not $count"
done <<'TABLE'
libgantrixa0j1    2  ^./usr/lib/(.*/)?libGantrixA0J\.so\.1(\.0)?$
libgantrixa0j1    5  ^./usr/share/gantrixa0j/templates/[^/]+\.xls$
libgantrixa0j1    9  .
libgantrixa0j-dev 1  ^./usr/lib/(.*/)?libGantrixA0J\.so$
libgantrixa0j-dev 1  ^./usr/include/GantrixA0J\.h$
libgantrixa0j-dev 1  ^./usr/lib/(.*/)?pkgconfig/gantrixa0j\.pc$
libgantrixa0j-dev 4  ^./usr/lib/(.*/)?cmake/GantrixA0J/GantrixA0J[A-Za-z-]*\.cmake$
rkparam           1  ^./usr/bin/rkparam$
rkparam           1  ^./usr/share/man/man1/rkparam\.1\.gz$
rkparam           1  ^./usr/share/applications/rkparam\.desktop$
rkparam           1  ^./usr/share/icons/hicolor/scalable/apps/gantrixa0j\.svg$
TABLE
for package in libgantrixa0j1 libgantrixa0j-dev rkparam; do
    for doc in copyright changelog.gz; do
        grep -q -x "./usr/share/doc/$package/$doc" "$package" || fail "$package has no $doc"
    done
done

# The library activates the loader cache's trigger; the others depend on exactly its version.
version=$(dpkg-deb --field cpack/libgantrixa0j1_*.deb Version)
dpkg-deb --ctrl-tarfile cpack/libgantrixa0j1_*.deb | tar -xO ./triggers | grep -q -x 'activate-noawait ldconfig' ||
    fail "libgantrixa0j1 does not trigger ldconfig"
for package in libgantrixa0j-dev rkparam; do
    dpkg-deb --field cpack/${package}_*.deb Depends | grep -q -F "libgantrixa0j1 (= $version)" ||
        fail "$package does not depend on libgantrixa0j1 (= $version)"
done
echo "package_contents: three packages, $(wc -l <manifest) files as installed"
