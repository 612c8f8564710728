#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# kelvo-util's result popup as a person sees it: kelvo-popup on a virtual display (Xvfb), read
# back from a screenshot with text recognition (tesseract), closed by its time-out or by a click
# on OK (xdotool). Skipped (77) only where no X server can be started.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
# shellcheck source=../../tools/kelvo-tv.d/popup.sh
source "$ROOT/tools/kelvo-tv.d/popup.sh"

skip() { echo "SKIP: $*"; exit 77; }

# Text recognition reads the popup from the screen with the backdrop around it cut away (on the
# whole screen it takes the card for a picture): card SHOT prints where the card lies (WxH+X+Y)
# and leaves it in SHOT.card.png.
card() {
    local box
    box=$(convert "$1" -fuzz 10% -format '%@' info:) || return 1
    convert "$1" -crop "$box" +repage "$1.card.png" && echo "$box"
}
recognise() { OMP_THREAD_LIMIT=1 tesseract "$1" - --psm 11 "${@:2}" 2>/dev/null; }
# The lines a screenshot shows. Recognition cannot tell whether a space stands before a colon,
# so that space is dropped on both sides of a comparison.
ocr() { card "$1" >/dev/null && recognise "$1.card.png" | grep -v '^[[:space:]]*$' | unspace; }
unspace() { sed 's/ *:/:/g'; }

# Seconds from the main loop's start to the end of Finish, as the log lines tell.
check_finish_seconds() {
    local called ran down
    called=$(popup_seconds "$1" "Finish(")
    ran=$(popup_seconds "$1" "> elm_run processed")
    down=$(popup_seconds "$1" "> elm_shutdown processed")
    ok "the log says \"elm_run processed\"" test -n "$ran"
    ok "the log says \"elm_shutdown processed\"" test -n "$down"
    [ -n "$called" ] && [ -n "$ran" ] && [ -n "$down" ] || return 0
    ok "left alone, Finish returns after about 5 s (took $called..$down s)" \
        awk -v a="$called" -v b="$down" 'BEGIN { exit !(b - a >= 4 && b - a <= 15) }'
}

# The popup of RESULT through `tools/kelvo-tv popup` without a display: the screenshot it names
# holds the title, TEXT (none: no line but the title and OK), and the button.
shows() {
    local result=$1 text=$2
    new_popup_case "result-$result"
    env -u DISPLAY "$ROOT/tools/kelvo-tv" popup "$result" --build-dir "$BUILD" --out "$C" >"$C/run.txt" 2>&1
    local status=$?
    grep -q "no X server could be started" "$C/run.txt" && skip "no X server could be started"
    eq "kelvo-tv popup's status" 0 "$status"
    eq "kelvo-popup's status" 0 "$(cat "$C/exit-status" 2>/dev/null)"
    local shot
    shot=$(sed -n 's/^screenshot: //p' "$C/run.txt")
    ok "kelvo-tv popup names its screenshot" test -f "$shot"
    [ -f "$shot" ] || return 0
    local lines
    lines=$(ocr "$shot")
    echo "seen: $(paste -sd'|' <<<"$lines")"
    ok "the title \"Dump\" shows" grep -qxF Dump <<<"$lines"
    ok "the button \"OK\" shows" grep -qxF OK <<<"$lines"
    if [ -n "$text" ]; then
        ok "the text \"$text\" shows" grep -qxF -- "$(unspace <<<"$text")" <<<"$lines"
    else
        eq "lines beside the title and the button" "" "$(grep -vxF -e Dump -e OK <<<"$lines")"
    fi
    check_finish_seconds "$C"
}

# A click on OK ends the popup at once. Recognition takes seconds on a busy machine, so a first
# showing finds where OK lies, as a person's eye would, and the second is clicked there as soon
# as it has drawn.
click_ok() {
    new_popup_case click-ok
    popup_display_start "$C/display"
    case $? in
        0) ;;
        1) skip "no X server could be started" ;;
        *) fail "the virtual display has no window manager"; return 0 ;;
    esac
    trap 'popup_display_stop; rm -rf "$WORK"' EXIT
    popup_start "$BUILD" 1 "$C/look"
    popup_screenshot "$C/look.png" || { fail "the popup drew nothing"; wait "$POPUP_PID"; return 0; }
    local box where=""
    box=$(card "$C/look.png")
    if [[ "$box" =~ ^[0-9]+x[0-9]+\+([0-9]+)\+([0-9]+)$ ]]; then
        where=$(recognise "$C/look.png.card.png" tsv | awk -F'\t' -v x="${BASH_REMATCH[1]}" -v y="${BASH_REMATCH[2]}" \
            '$12 == "OK" { printf "%d %d\n", x + $7 + $9 / 2, y + $8 + $10 / 2; exit }')
    fi
    wait "$POPUP_PID"
    ok "OK is found on the screen" test -n "$where"
    [ -n "$where" ] || return 0

    popup_start "$BUILD" 1 "$C"
    popup_screenshot "$C/shot.png" || { fail "the popup drew nothing the second time"; wait "$POPUP_PID"; return 0; }
    local clicked
    clicked=$(awk -v a="$(cat "$C/started")" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.3f", b - a }')
    # shellcheck disable=SC2086  # x and y
    xdotool mousemove $where click 1
    wait "$POPUP_PID"
    eq "kelvo-popup's status" 0 "$(cat "$C/exit-status" 2>/dev/null)"
    local called ran
    called=$(popup_seconds "$C" "Finish(")
    ran=$(popup_seconds "$C" "> elm_run processed")
    ok "the log says \"elm_shutdown processed\"" test -n "$(popup_seconds "$C" "> elm_shutdown processed")"
    echo "main loop from $called s to $ran s, clicked at $clicked s"
    [ -n "$ran" ] && [ -n "$called" ] || return 0
    ok "the loop ran until the click (${clicked} s), not ended before it (${ran} s)" \
        awk -v c="$clicked" -v r="$ran" 'BEGIN { exit !(r >= c) }'
    ok "the click ends the loop at once (clicked at ${clicked} s, ended at ${ran} s)" \
        awk -v c="$clicked" -v r="$ran" 'BEGIN { exit !(r - c <= 1.5) }'
    ok "well before the 5 s time-out (main loop ran $called..$ran s)" \
        awk -v a="$called" -v r="$ran" 'BEGIN { exit !(r - a < 4) }'
}

new_popup_case() {
    CASE=$1 C="$WORK/$1"
    mkdir -p "$C"
    echo "=== $CASE"
    local tool
    for tool in Xvfb evilwm tesseract xdotool import identify; do
        command -v "$tool" >/dev/null || skip "$tool is not installed (tools/kelvo-tv test installs it)"
    done
}

# result | text the popup shows (none for a result outside the table)
while IFS='|' read -r result text; do
    add_case "result-$result" shows "$result" "$text"
done <<'TABLE'
0|MW DB Dump : Fail
1|MW DB Dump : Success
2|RESTORE MW DB : Fail
3|RESTORE MW DB : Success (Reboot please)
7|
-1|
TABLE
add_case click-ok click_ok
cases "$@"
