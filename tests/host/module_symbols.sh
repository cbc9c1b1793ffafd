#!/usr/bin/env bash
# The module exports REALPluginMain alone and needs nothing beyond libc, libm and the loader.
set -euo pipefail
exported=$(nm -D --defined-only "$1" | awk '{print $3}')
if [ "$exported" != REALPluginMain ]; then
  echo "exported: $exported"
  exit 1
fi
needed=$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -vE '^(libc|libm|ld-linux.*|ld64)\.so\.[0-9]+$' || true)
if [ -n "$needed" ]; then
  echo "needed: $needed"
  exit 1
fi
