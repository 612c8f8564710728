#!/usr/bin/env bash
# The example aoc-guide as a person builds and runs it: compiled from the installed client with
# pkg-config, then run on the reference TV beside the content daemon simulator on a private bus.
# It must list the two app-on-channel services with their package ids and the guide their
# applications published.
# Usage: example-aoc-guide.sh BUILD_DIR SOURCE_ROOT
set -euo pipefail
build=$1 root=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
export PKG_CONFIG_PATH="$scratch/prefix/lib/pkgconfig:$scratch/prefix/lib/x86_64-linux-gnu/pkgconfig"

flags=()
supervisor=()
if grep -q '^KELVO_SANITIZE:BOOL=ON' "$build/CMakeCache.txt"; then
    flags=("-DCMAKE_CXX_FLAGS=-fsanitize=address,undefined")
    supervisor=(--sanitized)
elif grep -q '^KELVO_TSAN:BOOL=ON' "$build/CMakeCache.txt"; then
    flags=(-DCMAKE_CXX_FLAGS=-fsanitize=thread)
fi
cmake -S "$root/examples/aoc-guide" -B "$scratch/example" "${flags[@]}" >/dev/null
cmake --build "$scratch/example" >/dev/null

now=$(date +%s)
"$build/tools/tv-gen/kelvo-tv-gen" --opt "$scratch/opt" --fixture "$scratch/fixture.json" --services 20 --now "$now"
mkdir -p "$scratch/run" "$scratch/out"
ASAN_OPTIONS=detect_leaks=0 TZ_SYS_DB="$scratch/opt/dbspace" \
    "$build/tools/supervisor/kelvo-tv-supervisor" --run-dir "$scratch/run" --out "$scratch/out" \
    --fixture "$scratch/fixture.json" --no-notify "${supervisor[@]}" -- "$scratch/example/aoc-guide" --hours 2 >"$scratch/output" 2>&1 || true
cat "$scratch/output"

status=0
expect() {
    if ! grep -qE -- "$1" "$scratch/output"; then
        echo "missing: $2" >&2
        status=1
    fi
}
expect '^[0-9]+  com\.halvorn\.games  channel aoc-games' "the games service with its package id"
expect '^[0-9]+  com\.fjord\.radio  channel aoc-radio' "the radio service, its package id without NULs"
expect '^  now   [0-9:]{5}-[0-9:]{5}  Halvorn Games ' "the games service's programme now"
expect '^  [0-9:]{5}   30 min  Fjord Radio App ' "the radio service's guide"
expect '^2 app-on-channel services among [0-9]+$' "only those two among the TV's services"
exit $status
