#!/usr/bin/env bash
# libvprjp.so must export vprj*/vpri* symbols only, carry SONAME libvprjp.so.7
# and export vprjGetLibVersion.
set -euo pipefail
lib="$1"
syms=$(nm -D --defined-only "$lib" | awk '{print $3}' | sed 's/@.*//' | sort -u)
bad=$(echo "$syms" | grep -v -E '^(vpri|vprj)' || true)
if [[ -n "$bad" ]]; then
  echo "symbols that must not be exported:"; echo "$bad" | head -50; exit 1
fi
echo "$syms" | grep -qx vprjGetLibVersion || { echo "vprjGetLibVersion missing"; exit 1; }
soname=$(readelf -d "$lib" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')
[[ "$soname" == "libvprjp.so.7" ]] || { echo "SONAME is '$soname'"; exit 1; }
readelf -d "$lib" | grep -q 'libvprcore.so' || { echo "does not link libvprcore"; exit 1; }
readelf -d "$lib" | grep -q 'libgomp' || { echo "does not link the OpenMP runtime"; exit 1; }
echo "$(echo "$syms" | wc -l) exported symbols, all vpri*/vprj*; SONAME $soname"
