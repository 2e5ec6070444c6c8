#!/bin/sh
# finish.sh PACKAGE TIME: rewrites a package so that the same files give the same bytes. CPack packs files in the
# order in which the system lists them, with the times of the build.
set -eu
package=$1
export SOURCE_DATE_EPOCH=$2 TZ=UTC LC_ALL=C
scratch=$(mktemp -d "$package.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/tree"
cd "$scratch/tree"

same_times_and_permissions() {
  chmod -R u=rwX,go=rX .
  find . -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
}

case "$package" in
  *.deb)
    dpkg-deb --raw-extract "$package" .
    if [ -f DEBIAN/triggers ]; then
      # CPack adds scripts that call ldconfig, even if there is a trigger for it.
      rm DEBIAN/postinst DEBIAN/postrm
    fi
    # CPack counts a library again for each link to it. Debian counts 1 KiB for everything that is not a file.
    size=$(find usr -type f -printf '%s\n' -o -printf '1\n' |
      awk '{ sum += int(($1 + 1023) / 1024) } END { print sum }')
    sed -i "s/^Installed-Size: .*/Installed-Size: $size/" DEBIAN/control
    find usr -type f -print0 | sort -z | xargs -0 md5sum > DEBIAN/md5sums
    same_times_and_permissions
    dpkg-deb --root-owner-group -Zxz --build . "$scratch/package" >/dev/null ;;
  *.tar.gz)
    tar -xf "$package"
    same_times_and_permissions
    tar --format=gnu --sort=name --owner=0 --group=0 --numeric-owner -cf - -- * | gzip -9n > "$scratch/package" ;;
  *.zip)
    unzip -q "$package"
    same_times_and_permissions
    find . -type f -printf '%P\n' | sort | zip -9 -q -X "$scratch/package.zip" -@
    mv "$scratch/package.zip" "$scratch/package" ;;
  *)
    echo "$0: no rule for $package" >&2
    exit 1 ;;
esac
mv -f "$scratch/package" "$package"
