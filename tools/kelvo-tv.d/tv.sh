# shellcheck shell=bash disable=SC2034,SC2153
# (Sourced by tools/kelvo-tv: its variables are set and read across these files.)
# kelvo-tv: the simulated TV's state folder and the stick. The TV's folder tree itself is made by
# the TV generator (kelvo-tv-gen), the one place that knows it.

DAEMON_DATA_REL=opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data
SIM_REL=opt/var/kelvo-sim
# The content daemon's fixture made with a reference TV, kept in the TV's folder beside opt/.
TV_FIXTURE_NAME=daemon-fixture.json

# A fresh simulated TV at $1 (its /opt is $1/opt): the folders the set has and, unless --minimal,
# the reference TV's data and the server metadata its content daemon serves (with what a dump of
# this TV must yield, beside it).
make_tv() {
    local tv=$1 gen="$BUILD_DIR/tools/tv-gen/kelvo-tv-gen"
    if [ -e "$tv" ] && [ -n "$(ls -A "$tv" 2>/dev/null)" ] && [ ! -e "$tv/.kelvo-tv" ]; then
        die "$tv is not empty and was not made by kelvo-tv; not replacing it"
    fi
    [ -x "$gen" ] || die "the TV generator is not built ($gen)"
    rm -rf "$tv"
    if [ "$MINIMAL" -eq 1 ]; then
        "$gen" --opt "$tv/opt" --minimal || die "the TV generator failed"
    else
        "$gen" --opt "$tv/opt" --fixture "$tv/$TV_FIXTURE_NAME" --expected "$tv" || die "the TV generator failed"
    fi
    : >"$tv/.kelvo-tv"
}

# An empty stick at $1, replacing one kelvo-tv made before.
make_stick() {
    local stick=$1
    if [ -e "$stick" ] && [ -n "$(ls -A "$stick" 2>/dev/null)" ] && [ ! -e "$STATE/.stick-$(basename "$stick")" ]; then
        die "$stick is not empty and was not made by kelvo-tv; not replacing it"
    fi
    rm -rf "$stick"
    mkdir -p "$stick" "$STATE"
    : >"$STATE/.stick-$(basename "$stick")"
}

set_defaults() {
    TV=$(absolute "${TV:-$STATE/tv}")
    OUT=$(absolute "${OUT:-$STATE/out}")
    [ -n "$STICK" ] && STICK=$(absolute "$STICK")
    if [ -n "$FIXTURE" ]; then
        [ -f "$FIXTURE" ] || die "no fixture file $FIXTURE"
        FIXTURE=$(absolute "$FIXTURE")
    fi
    return 0
}

# The content daemon's fixture when none is given: the reference one, if the tree has it.
default_fixture() {
    local f
    for f in "$ROOT"/tools/daemon-sim/fixtures/reference*.json "$ROOT"/tools/daemon-sim/reference*.json \
             "$ROOT"/tools/tv-gen/reference*.json "$ROOT"/tools/*/fixtures/reference*.json; do
        [ -f "$f" ] && { printf '%s' "$f"; return 0; }
    done
    return 0
}

# The daemon's fixture when none was given: the one made with the TV, else the tree's reference.
resolve_fixture() {
    [ -n "$FIXTURE" ] && return 0
    if [ -f "$TV/$TV_FIXTURE_NAME" ]; then
        FIXTURE="$TV/$TV_FIXTURE_NAME"
    else
        FIXTURE=$(default_fixture)
    fi
    return 0
}
