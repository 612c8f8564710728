#!/usr/bin/env bash
# The installed client as an application of the set sees it. The build is installed into a
# temporary prefix that is then moved, so the installed files must find each other from where
# they lie; then, by MODE:
#   pkg-config     a client compiled with pkg-config's flags only, run against the installed libraries
#   cmake-package  the same client built with find_package(kelvo-provider-client CONFIG), run
#   headers        every installed header of the client compiled on its own
# Usage: installed-client.sh MODE BUILD_DIR SOURCE_DIR (SOURCE_DIR: this folder)
set -euo pipefail
mode=$1 build=$2 source=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build" --prefix "$scratch/staging" >/dev/null
mv "$scratch/staging" "$scratch/prefix"
prefix=$scratch/prefix

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig:$prefix/lib/x86_64-linux-gnu/pkgconfig:$prefix/lib64/pkgconfig"
pc() { pkg-config "$@" kelvo-provider-client; }

# A sanitizer build's libraries need the sanitizer's runtime in the client too.
sanitize=()
if grep -q '^KELVO_SANITIZE:BOOL=ON' "$build/CMakeCache.txt"; then
    sanitize=("-fsanitize=address,undefined")
elif grep -q '^KELVO_TSAN:BOOL=ON' "$build/CMakeCache.txt"; then
    sanitize=(-fsanitize=thread)
fi

# The client prints the programme it made in its text form and exits 0 when all it checked held.
expect_client_runs() {
    local output
    output=$(ASAN_OPTIONS=detect_leaks=0 "$@")
    if [[ $output != *'"str_program_source_id":"src-1"'* ]]; then
        echo "unexpected client output: $output" >&2
        return 1
    fi
}

case $mode in
pkg-config)
    pc --exists
    read -ra flags <<<"$(pc --cflags --libs)"
    g++ -std=c++17 "${sanitize[@]}" -o "$scratch/client" "$source/client.cpp" "${flags[@]}"
    expect_client_runs env LD_LIBRARY_PATH="$(pc --variable=libdir)" "$scratch/client"
    ;;
cmake-package)
    cmake -S "$source/consumer" -B "$scratch/consumer" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_FLAGS="${sanitize[*]}" >"$scratch/configure.log" ||
        { cat "$scratch/configure.log" >&2; exit 1; }
    # Found in the moved prefix, not in an install elsewhere on the machine.
    grep -q "^kelvo-provider-client_DIR:PATH=$prefix/" "$scratch/consumer/CMakeCache.txt"
    cmake --build "$scratch/consumer" >"$scratch/build.log" || { cat "$scratch/build.log" >&2; exit 1; }
    # The executable finds the libraries through the run path the exported targets gave it.
    expect_client_runs "$scratch/consumer/client"
    ;;
headers)
    read -ra flags <<<"$(pc --cflags)"
    failed=0
    for header in "$prefix"/include/kelvo-provider-client/*.h; do
        printf '#include <%s>\n' "${header##*/}" >"$scratch/one.cpp"
        if ! g++ -std=c++17 -fsyntax-only "${flags[@]}" "$scratch/one.cpp"; then
            echo "${header##*/} does not compile on its own" >&2
            failed=1
        fi
    done
    exit "$failed"
    ;;
*)
    echo "usage: $0 pkg-config|cmake-package|headers BUILD_DIR SOURCE_DIR" >&2
    exit 2
    ;;
esac
echo "installed client: $mode"
