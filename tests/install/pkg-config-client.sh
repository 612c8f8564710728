#!/usr/bin/env bash
# Installs the build into a temporary prefix, compiles a client with pkg-config's flags only and
# runs it against the installed libraries.
set -euo pipefail
build=$1 source=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
export PKG_CONFIG_PATH="$prefix/lib/pkgconfig:$prefix/lib/x86_64-linux-gnu/pkgconfig:$prefix/lib64/pkgconfig"
pc() { pkg-config "$@" kelvo-provider-client; }
pc --exists
flags=$(pc --cflags --libs)
# The sanitizer build's libraries need the sanitizer runtime in the client too.
extra=$(grep -q '^KELVO_SANITIZE:BOOL=ON' "$build/CMakeCache.txt" && echo "-fsanitize=address,undefined" || true)
g++ -std=c++17 $extra -o "$prefix/client" "$source" $flags
libdir=$(pc --variable=libdir)
LD_LIBRARY_PATH="$libdir" ASAN_OPTIONS=detect_leaks=0 "$prefix/client" | grep -q '"str_program_source_id":"src-1"'
echo "installed client built and ran"
