#!/usr/bin/env bash
# Brings up private surroundings and plays a demo in them: a call, or a training session.
set -euo pipefail
# shellcheck source=tools/house.sh
source "$(dirname "${BASH_SOURCE[0]}")/../house.sh"

usage() {
    echo "Usage: play.sh call|training --bin FOLDER --output FOLDER [--headless] [--script SCRIPT]" >&2
    exit 2
}

kind=${1:-}
[[ $kind == call || $kind == training ]] || usage
shift
headless=no
passed=()
while (($#)); do
    case $1 in
    --headless) headless=yes ;;
    --bin | --output | --script)
        (($# >= 2)) || usage
        passed+=("$1" "$2")
        shift
        ;;
    *) usage ;;
    esac
    shift
done
((${#passed[@]})) || usage

houseTraps
# Windows are looked at through X11, which a Wayland session offers too.
[[ $headless == no && -n ${DISPLAY:-} ]] && hasDisplay || headless=yes
if [[ $headless == no ]]; then
    say "Private sound server and home; the window opens on your display"
    export XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority}
    # Where it is, the program's own X11 window is what can be pictured.
    unset WAYLAND_DISPLAY
else
    say "Private display, sound server and home"
fi
privateHome
[[ $headless == no ]] || privateDisplay 1280x1024
[[ $headless == no ]] || passed+=(--own-display)
privateBus
privateAccessibility
privateSound
runChild demo /usr/bin/python3 -B "$houseRoot/tools/demo/$kind.py" "${passed[@]}"
