#!/usr/bin/env bash
# package.sh FOLDER: builds the Debian packages in FOLDER, from a copy of the sources, so that nothing is left
# in the tree or beside it. Then it checks them with lintian.
set -euo pipefail
folder=$1
sources=$folder/sources

rm -rf "$folder"
mkdir -p "$sources"
tar --create --exclude=./.git --exclude=./build --exclude='./build-*' . |
  tar --extract --directory "$sources"
(cd "$sources" && dpkg-buildpackage --build=binary --no-sign)
(cd "$sources/python" && python3 -c 'import setuptools.build_meta as build; build.build_wheel("../..")')
rm -rf "$sources"
lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$folder"/*.changes
echo "The packages:"
ls "$folder"/*.deb "$folder"/*.whl
