# shellcheck shell=bash
# What run, test, bench and .ci/run share: saying what is done, installing what is missing, building,
# and private surroundings (display, bus, sound) whose processes end with the script that sources this.

houseRoot=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
houseChildren=()
housePrivate=""
houseJobs=$(nproc)

say() { printf '==> %s\n' "$*"; }
die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# --- Ending ---------------------------------------------------------------------------------------

# Every child leads a process group of its own, so that what it started ends with it; the kernel ends
# it as well should this script be killed.
# startChild NAME LOG COMMAND...: sets childPid. The log "-" is this script's own output.
startChild() {
    local name=$1 log=$2
    shift 2
    if [[ $log == - ]]; then
        setsid setpriv --pdeathsig TERM "$@" </dev/null &
    else
        setsid setpriv --pdeathsig TERM "$@" </dev/null >"$log" 2>&1 &
    fi
    childPid=$!
    houseChildren+=("$childPid:$name")
}

# runChild NAME COMMAND...: in the foreground, yet ended with this script; gives its exit status.
runChild() {
    local name=$1 pid code=0
    shift
    setsid setpriv --pdeathsig TERM "$@" </dev/null &
    pid=$!
    houseChildren+=("$pid:$name")
    wait "$pid" || code=$?
    endChild "$pid"
    return "$code"
}

endGroup() {
    local pid=$1 waited=0
    # One that was just started may not lead its group yet; it is still a job of this shell then.
    if ! kill -TERM -- "-$pid" 2>/dev/null && jobs -p | grep -qx "$pid"; then
        kill -TERM "$pid" 2>/dev/null || true
    fi
    while kill -0 -- "-$pid" 2>/dev/null; do
        # A child that has ended but was not waited for still counts as a member of its group.
        if grep -qs '^State:.Z' "/proc/$pid/status"; then
            wait "$pid" 2>/dev/null || true
        fi
        ((++waited > 100)) && kill -KILL -- "-$pid" 2>/dev/null
        sleep 0.05
    done
    wait "$pid" 2>/dev/null || true
}

endChild() {
    local entry kept=()
    for entry in "${houseChildren[@]}"; do
        if [[ ${entry%%:*} == "$1" ]]; then endGroup "$1"; else kept+=("$entry"); fi
    done
    houseChildren=("${kept[@]}")
}

endChildren() {
    local i
    for ((i = ${#houseChildren[@]} - 1; i >= 0; i--)); do
        endGroup "${houseChildren[i]%%:*}"
    done
    houseChildren=()
}

houseCleanUp() {
    trap '' INT TERM HUP
    endChildren
    [[ -z $housePrivate ]] || rm -rf "$housePrivate"
}

# Called once by every script before it starts anything.
houseTraps() {
    trap houseCleanUp EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'exit 129' HUP
}

# waitUntil SECONDS COMMAND...: asks twenty times a second.
waitUntil() {
    local tries=$(($1 * 20))
    shift
    while ! "$@" >/dev/null 2>&1; do
        ((tries-- > 0)) || return 1
        sleep 0.05
    done
}

# --- Packages -------------------------------------------------------------------------------------

packagesOf() {
    local group
    for group in "$@"; do
        awk -v group="$group" '!/^#/ && $1 == group {print $2}' "$houseRoot/packaging/packages.txt"
    done
}

missingPackages() {
    local wanted
    mapfile -t wanted < <(packagesOf "$@")
    ((${#wanted[@]})) || return 0
    comm -23 <(printf '%s\n' "${wanted[@]}" | sort -u) \
        <(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "${wanted[@]}" 2>/dev/null |
            awk '$2 == "installed" {print $1}' | sort -u)
}

asRoot() {
    if ((EUID == 0)); then
        "$@"
    else
        sudo "$@"
    fi
}

aptInstall() {
    asRoot env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
        -o DPkg::Lock::Timeout=300 "$@"
}

# installGroups GROUP...: no apt call, and no sudo, when nothing is missing.
installGroups() {
    if ! command -v dpkg-query >/dev/null; then
        say "No dpkg here: taking it that the packages of packaging/packages.txt are installed"
        return 0
    fi
    local missing
    mapfile -t missing < <(missingPackages "$@")
    ((${#missing[@]})) || return 0
    say "Installing ${#missing[@]} Debian packages: ${missing[*]}"
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        die "neither root nor sudo; as root: apt-get install --no-install-recommends ${missing[*]}"
    fi
    # The package lists are fetched when they don't know a package, or know versions that are gone.
    if apt-get install --simulate --no-install-recommends "${missing[@]}" >/dev/null 2>&1 &&
        aptInstall "${missing[@]}"; then
        return 0
    fi
    say "Refreshing the package lists"
    asRoot apt-get update -q || die "apt-get update failed"
    aptInstall "${missing[@]}" || die "these packages could not be installed: ${missing[*]}"
}

# --- Building -------------------------------------------------------------------------------------

# configure PRESET [-DNAME=VALUE...]: quiet unless it fails.
configure() {
    local preset=$1 log="$houseRoot/build/$1-configure.log"
    shift
    mkdir -p "$houseRoot/build"
    (cd "$houseRoot" && cmake --preset "$preset" "$@") >"$log" 2>&1 || {
        cat "$log" >&2
        die "CMake could not configure the preset $preset"
    }
}

# build PRESET [TARGET...]: shows ninja's progress, and is silent when there is nothing to do.
build() {
    local preset=$1
    shift
    if ninja -C "$houseRoot/build/$preset" -n "$@" | grep -q 'no work to do'; then
        return 0
    fi
    say "Building ($preset)"
    if [[ -t 1 ]]; then
        ninja -C "$houseRoot/build/$preset" -j "$houseJobs" "$@"
    else
        NINJA_STATUS='[%p %f/%t] ' ninja -C "$houseRoot/build/$preset" -j "$houseJobs" "$@" | everyTenth
    fi
}

# Where ninja can't overwrite its line: one line for each tenth of the work, and whatever is no progress.
everyTenth() {
    local line percent next=0
    # awk would hold lines back until it has many.
    while IFS= read -r line; do
        if [[ $line =~ ^\[\ *([0-9]+)%\  ]]; then
            percent=${BASH_REMATCH[1]}
            ((percent >= next)) || continue
            next=$((percent - percent % 10 + 10))
        elif [[ $line == 'ninja: Entering directory'* || $line == 'ninja: no work to do.' ]]; then
            continue
        fi
        printf '%s\n' "$line"
    done
}

# testNames PRESET [CTEST SELECTION...]: whether or not they are built yet; "ScreensTest" for all "ScreensTest.Main"s.
testNames() {
    local preset=$1
    shift
    (cd "$houseRoot/build/$preset" && ctest -N "$@") | sed -n 's/^ *Test *#[0-9]*: \([^.]*\).*/\1/p' |
        sort -u
}

# knownTargets PRESET NAME...: those of the names that can be built.
knownTargets() {
    local preset=$1
    shift
    comm -12 <(printf '%s\n' "$@" | sort -u) \
        <(ninja -C "$houseRoot/build/$preset" -t targets all | sed -n 's/^\([^/:]*\): phony$/\1/p' | sort -u)
}

# --- Private surroundings -------------------------------------------------------------------------

# privateFolder: a short path, since socket names are limited to 107 bytes.
privateFolder() {
    [[ -z $housePrivate ]] || return 0
    housePrivate=$(mktemp -d /tmp/corvellan.XXXXXX)
    mkdir -m 700 "$housePrivate/run" "$housePrivate/home"
}

hasDisplay() {
    if [[ -n ${DISPLAY:-} ]] && command -v xdpyinfo >/dev/null; then
        timeout 5 xdpyinfo >/dev/null 2>&1 && return 0
    fi
    [[ -n ${WAYLAND_DISPLAY:-} ]]
}

hasSoundServer() {
    command -v pactl >/dev/null && timeout 5 pactl info >/dev/null 2>&1
}

# Everything that is looked up by HOME or XDG_* then lies in the private folder.
privateHome() {
    privateFolder
    export HOME="$housePrivate/home" XDG_RUNTIME_DIR="$housePrivate/run"
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_STATE_HOME SPEECHD_ADDRESS
}

# privateDisplay WIDTHxHEIGHT
privateDisplay() {
    privateFolder
    local cookie number size=$1
    cookie=$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')
    # The server takes every cookie of the file, whichever display it names.
    xauth -q -f "$housePrivate/xauthority" add :0 . "$cookie" 2>/dev/null
    : >"$housePrivate/display"
    # shellcheck disable=SC2016  # The inner shell expands these.
    startChild Xvfb "$housePrivate/xvfb.log" bash -c \
        'exec Xvfb -displayfd 6 -screen 0 "$2x24" -nolisten tcp -noreset -auth "$1/xauthority" 6>"$1/display"' \
        xvfb "$housePrivate" "$size"
    waitUntil 20 grep -q . "$housePrivate/display" || die "Xvfb did not start: $(cat "$housePrivate/xvfb.log")"
    number=$(cat "$housePrivate/display")
    xauth -q -f "$housePrivate/xauthority" add ":$number" . "$cookie" 2>/dev/null
    unset WAYLAND_DISPLAY WAYLAND_SOCKET
    export DISPLAY=":$number" XAUTHORITY="$housePrivate/xauthority" XDG_SESSION_TYPE=x11
    # It names itself on the root window before it manages; a window that comes in between stays unmanaged.
    startChild openbox "$housePrivate/openbox.log" openbox --sm-disable --startup "touch $housePrivate/managed"
    waitUntil 10 test -e "$housePrivate/managed" || die "openbox did not start: $(cat "$housePrivate/openbox.log")"
}

# busConfiguration SOCKET: of a bus that can activate nothing, so that no daemon of the desktop takes part.
busConfiguration() {
    cat <<-CONF
		<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
		 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
		<busconfig>
		  <type>session</type>
		  <listen>unix:path=$1</listen>
		  <policy context="default">
		    <allow send_destination="*" eavesdrop="true"/>
		    <allow eavesdrop="true"/>
		    <allow own="*"/>
		  </policy>
		</busconfig>
	CONF
}

privateBus() {
    privateFolder
    busConfiguration "$housePrivate/run/bus" >"$housePrivate/bus.conf"
    startChild dbus-daemon "$housePrivate/bus.log" dbus-daemon --config-file="$housePrivate/bus.conf" --nofork --nopidfile
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$housePrivate/run/bus"
    waitUntil 10 dbusCall org.freedesktop.DBus / org.freedesktop.DBus.GetId ||
        die "dbus-daemon did not start: $(cat "$housePrivate/bus.log")"
}

dbusCall() {
    local name=$1 path=$2 method=$3
    dbus-send --session --print-reply=literal --dest="$name" "$path" "$method"
}

# The accessibility bus of the private session. Its launcher runs without a display: it would write
# its address on the root window, and the display may be the user's.
privateAccessibility() {
    startChild at-spi "$housePrivate/at-spi.log" env -u DISPLAY -u WAYLAND_DISPLAY \
        /usr/libexec/at-spi-bus-launcher --launch-immediately
    waitUntil 10 dbusCall org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress ||
        die "the accessibility bus did not start: $(cat "$housePrivate/at-spi.log")"
    AT_SPI_BUS_ADDRESS=$(dbusCall org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress | sed 's/^ *//')
    export AT_SPI_BUS_ADDRESS QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
}

# PulseAudio is installed only where that removes nothing: it excludes the desktop's PipeWire.
installSoundServer() {
    command -v pulseaudio >/dev/null && return 0
    hasPipeWire && return 0
    installGroups sound
}

hasPipeWire() {
    command -v pipewire >/dev/null && command -v wireplumber >/dev/null && command -v pipewire-pulse >/dev/null
}

# Two devices: "spk", the default output, and "mic", the default source, which hears what is played
# into "micfeed". Needs the private bus where it is PipeWire that runs.
privateSound() {
    privateFolder
    if command -v pulseaudio >/dev/null; then
        privatePulseAudio
    elif hasPipeWire; then
        privatePipeWire
    else
        die "neither PulseAudio nor PipeWire (with pipewire-pulse and wireplumber) is installed"
    fi
    unset PULSE_SINK PULSE_SOURCE
}

privatePulseAudio() {
    cat >"$housePrivate/sound.pa" <<-PA
		load-module module-native-protocol-unix socket=$housePrivate/run/native auth-anonymous=1
		load-module module-null-sink sink_name=spk rate=48000 channels=2 format=float32le norewinds=1
		load-module module-null-sink sink_name=micfeed rate=44100 channels=1 norewinds=1
		load-module module-remap-source source_name=mic master=micfeed.monitor
		set-default-sink spk
		set-default-source mic
	PA
    startChild pulseaudio "$housePrivate/sound.log" env HOME="$housePrivate/home" XDG_RUNTIME_DIR="$housePrivate/run" \
        pulseaudio -n -F "$housePrivate/sound.pa" --daemonize=no --fail --exit-idle-time=-1 --use-pid-file=no \
        --disable-shm=yes --realtime=no --high-priority=no
    export PULSE_SERVER="unix:$housePrivate/run/native"
    waitUntil 20 defaultSourceIs mic || die "PulseAudio did not start: $(cat "$housePrivate/sound.log")"
}

privatePipeWire() {
    local runtime=(env -u XDG_CONFIG_HOME -u DISPLAY -u WAYLAND_DISPLAY
        HOME="$housePrivate/home" XDG_RUNTIME_DIR="$housePrivate/run" PIPEWIRE_RUNTIME_DIR="$housePrivate/run")
    startChild pipewire "$housePrivate/pipewire.log" "${runtime[@]}" pipewire
    waitUntil 10 test -S "$housePrivate/run/pipewire-0" || die "PipeWire did not start: $(cat "$housePrivate/pipewire.log")"
    startChild wireplumber "$housePrivate/wireplumber.log" "${runtime[@]}" wireplumber
    startChild pipewire-pulse "$housePrivate/sound.log" "${runtime[@]}" pipewire-pulse
    export PULSE_SERVER="unix:$housePrivate/run/pulse/native"
    waitUntil 20 timeout 2 pactl info || die "pipewire-pulse did not start: $(cat "$housePrivate/sound.log")"
    pactl load-module module-null-sink sink_name=spk rate=48000 channels=2 >/dev/null
    pactl load-module module-null-sink sink_name=micfeed rate=44100 channels=1 channel_map=mono >/dev/null
    pactl load-module module-remap-source source_name=mic master=micfeed.monitor >/dev/null
    pactl set-default-sink spk
    pactl set-default-source mic
    waitUntil 20 defaultSourceIs mic || die "PipeWire did not take the virtual microphone"
}

defaultSourceIs() { [[ $(timeout 2 pactl get-default-source) == "$1" ]]; }
