#!/usr/bin/env bash
# package.sh FOLDER: builds the Debian packages and the Python wheel in FOLDER, and checks the
# packages with lintian. It uses a copy of the sources, so that no files are left in the tree or
# beside it.
set -euo pipefail
folder=$1
sources=$folder/sources
export PATH=/usr/sbin:/usr/bin:/sbin:/bin # uses only the system's tools and Python

rm -rf "$folder"
mkdir -p "$sources"
tar --create --exclude=./.git --exclude=./build --exclude='./build-*' . |
  tar --extract --directory "$sources"
(cd "$sources" && dpkg-buildpackage --build=binary --no-sign)
cp "$sources/LICENSE" "$sources/python"
(
  cd "$sources/python"
  SOURCE_DATE_EPOCH=$(dpkg-parsechangelog --file ../debian/changelog --show-field Timestamp)
  export SOURCE_DATE_EPOCH # makes the build reproducible
  python3 -c 'import setuptools.build_meta as build; build.build_wheel("../..")'
)
rm -rf "$sources"
lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$folder"/*.changes
echo "The packages:"
ls "$folder"/*.deb "$folder"/*.whl
