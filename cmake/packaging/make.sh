#!/bin/sh
# make.sh KIND...: makes the packages of these kinds (deb, tgz, zip) in build/packages/. ./dev packages installs what it
# needs.
set -eu
cd "$(dirname "$0")/../.."
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
# Checkouts of the same sources share the compiler cache.
CCACHE_BASEDIR=${CCACHE_BASEDIR:-$PWD} CCACHE_NOHASHDIR=1
export SOURCE_DATE_EPOCH CCACHE_BASEDIR CCACHE_NOHASHDIR
mkdir -p build/packages
for kind; do
  folder=build/package-$kind
  cmake --preset "package-$kind" --log-level=WARNING >/dev/null
  cmake --build --preset "package-$kind" -- --quiet
  rm -rf "$folder/packages"
  cpack --config "$folder/CPackConfig.cmake" -B "$PWD/$folder/packages" >"$folder/cpack.log" 2>&1 ||
    { cat "$folder/cpack.log"; exit 1; }
  case $kind in
    deb) pattern='*.deb' ;;
    tgz) pattern='*.tar.gz' ;;
    zip) pattern='*.zip' ;;
  esac
  find build/packages -maxdepth 1 -name "$pattern" -delete
  find "$folder/packages" -maxdepth 1 -name "$pattern" -exec cp {} build/packages \;
done
