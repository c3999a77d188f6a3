# Shows Quillon at work: a display of its own, a window manager, a clock pinned under another application. Sourced.
# shellcheck shell=bash

# Directory for everything that the demonstration leaves behind, removed at its end.
stage=
# Processes to end, in the order of their start.
actors=()

# start NAME COMMAND...: runs a command until the demonstration ends.
start() {
    local name=$1
    shift
    "$@" &>"$stage/$name.log" &
    actors+=($!)
}

# Last started, first ended: nothing loses its display while it still runs.
strike() {
    local status=$? index
    if ((status != 0)); then
        echo "The demonstration failed; what its programs said last:" >&2
        tail -n 3 "$stage"/*.log >&2 || true
    fi
    for ((index = ${#actors[@]} - 1; index >= 0; index--)); do
        kill "${actors[index]}" 2>/dev/null || true
        wait "${actors[index]}" 2>/dev/null || true
    done
    rm -rf "$stage"
}

# await WHAT COMMAND...: repeats the command until it succeeds, for at most 20 seconds.
await() {
    local what=$1 deadline=$((SECONDS + 20))
    shift
    until "$@" &>>"$stage/await.log"; do
        if ((SECONDS >= deadline)); then
            die 1 "waited in vain for $what"
        fi
        sleep 0.1
    done
}

# A display with a session bus and a window manager, apart from the user's own settings and session.
open_stage() {
    stage=$(mktemp -d)
    trap strike EXIT
    mkdir -m 700 "$stage/home" "$stage/runtime"
    unset XAUTHORITY WAYLAND_DISPLAY XDG_CONFIG_HOME XDG_STATE_HOME XDG_DATA_HOME XDG_CACHE_HOME
    export HOME=$stage/home XDG_RUNTIME_DIR=$stage/runtime

    local channel number
    mkfifo "$stage/display"
    exec {channel}<>"$stage/display"
    start xvfb Xvfb -displayfd "$channel" -screen 0 1280x800x24 -noreset -nolisten tcp
    read -r -t 20 -u "$channel" number || die 1 "Xvfb did not start"
    export DISPLAY=:$number

    start bus dbus-daemon --session --nofork --nopidfile --address="unix:path=$stage/bus"
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$stage/bus
    await "the session bus" test -S "$stage/bus"

    start openbox openbox --config-file scripts/demonstration/openbox.xml
    await "the window manager" grep_property root _NET_SUPPORTING_WM_CHECK 'window id'
    xsetroot -solid '#5b7480'
}

# grep_property WINDOW|root PROPERTY PATTERN
grep_property() {
    local window=(-root)
    [[ $1 == root ]] || window=(-id "$1")
    xprop "${window[@]}" "$2" | grep -q "$3"
}

# find_window CLASS: sets `found` to the number of the application's window.
find_window() {
    found=$(xdotool search --onlyvisible --class "$1" | tail -n 1)
    [[ -n $found ]]
}

is_active() {
    [[ $(xdotool getactivewindow) == "$1" ]]
}

# is_above UPPER LOWER
is_above() {
    xprop -root _NET_CLIENT_LIST_STACKING | grep -q "$(printf '0x%x\\b.*0x%x\\b' "$2" "$1")"
}

# Part of the display, as ImageMagick writes it: width, height, left and top edge, in pixels.
place_of() {
    local X Y WIDTH HEIGHT
    eval "$(xdotool getwindowgeometry --shell "$1")"
    echo "${WIDTH}x$HEIGHT+$X+$Y"
}

# Whether anything but a background is to be seen in that part of the display.
has_drawn() {
    (($(import -window root -crop "$1" +repage -format '%k' info:) > 2))
}

# looks_like PLACE PICTURE: whether that part of the display shows the picture; a tenth of the pixels may differ,
# as the time goes on.
looks_like() {
    local differing width height
    import -window root -crop "$1" +repage "$stage/now.png"
    differing=$(compare -metric AE -fuzz 5% "$2" "$stage/now.png" null: 2>&1) || true
    read -r width height < <(identify -format '%w %h\n' "$2")
    awk -v differing="$differing" -v pixels=$((width * height)) 'BEGIN { exit !(differing < pixels / 10) }'
}

# demonstrate PROGRAM FILE: pins a clock, covers it with another application, and writes a picture of the display.
demonstrate() {
    local program=$1 picture=$2 found clock browser place
    open_stage

    start clock xterm -class Clock -title Clock -geometry 24x5+360+330 -fa Monospace -fs 22 -bg '#10323a' -fg '#f2e9d8' \
        -e bash scripts/demonstration/clock
    await "the clock" find_window Clock
    clock=$found
    start browser gtk3-demo
    await "the browser of examples" find_window gtk3-demo
    browser=$found
    xdotool windowsize "$browser" 1120 680 windowmove "$browser" 80 60

    xdotool windowactivate "$clock"
    await "the clock in front" is_active "$clock"
    place=$(place_of "$clock")
    await "the clock's face" has_drawn "$place"
    import -window root -crop "$place" +repage "$stage/clock.png"

    # Nobody is there to answer what a first start asks.
    "$program" defaults write didPromptForAccessibilityStableIdentity true
    start quillon "$program"
    await "Quillon" "$program" list
    "$program" pin "$clock"
    xdotool windowactivate "$browser"
    await "the browser over the clock" is_above "$browser" "$clock"
    await "Quillon's panel over the browser" looks_like "$place" "$stage/clock.png"

    import -window root "$picture"
    echo "$picture shows a clock behind another application, and Quillon's live copy of the clock above it"
}
