#!/usr/bin/env bash
# Makes the Debian packages and the archive, checks them, and tries what they hold, unpacked. They are left in
# build/package.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(dpkg-dev file lintian)
install_packages
build package
rm -f build/package/*.deb build/package/*.tar.gz
date=$(sed -n 's/^set(CPACK_ZEB_VERSION_DATE "\(.*\)")/\1/p' build/package/CPackConfig.cmake)
(cd build/package && SOURCE_DATE_EPOCH=$(date -u -d "$date" +%s) cpack >cpack.log 2>&1) ||
    { cat build/package/cpack.log; exit 1; }

lintian --fail-on error --allow-root build/package/*.deb
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
for package in build/package/*.deb; do
    dpkg-deb -x "$package" "$place/debian"
done
scripts/try-install.sh build/package "$place/debian/usr"
mkdir "$place/archive"
tar -xf build/package/*.tar.gz -C "$place/archive" --strip-components=1
scripts/try-install.sh build/package "$place/archive"
ls build/package/*.deb build/package/*.tar.gz
