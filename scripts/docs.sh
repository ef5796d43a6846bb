#!/usr/bin/env bash
# docs.sh FOLDER: writes the reference of the public headers to FOLDER/html. Fails on any warning.
set -euo pipefail
folder=$1
mkdir -p "$folder"
headers=$(grep -oE '[A-Za-z/-]+\.h' cmake/PublicHeaders.cmake | tr '\n' ' ')
{
  cat docs/Doxyfile
  echo "INPUT = $headers"
  echo "OUTPUT_DIRECTORY = $folder"
} | doxygen -
echo "The reference: $folder/html/index.html"
