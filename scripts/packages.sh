# Sourced by the other scripts: what they need from the distribution, installed only where it is missing.

# stop <words>: ends the script with one line.
stop() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# Runs a command as the superuser.
as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# need <package>=<program, or absolute path of a file, that it brings>...
need() {
    local entry brings missing=()
    for entry; do
        brings=${entry#*=}
        # A file need not be a program; a name without a path might be one of this tree's folders.
        case $brings in
            /*) [ -e "$brings" ] ;;
            *) command -v "$brings" >/dev/null ;;
        esac || missing+=("${entry%%=*}")
    done
    [ ${#missing[@]} -eq 0 ] && return
    command -v apt-get >/dev/null || stop "please install: ${missing[*]}"
    [ "$(id -u)" = 0 ] || command -v sudo >/dev/null || stop "neither root nor sudo to install: ${missing[*]}"
    printf 'installing %s\n' "${missing[*]}"
    as_root apt-get update -q || stop "apt-get update failed, so these could not be installed: ${missing[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" ||
        stop "apt-get could not install: ${missing[*]}"
}

[ -w . ] || stop "no permission to write to $PWD"
# The library asks it where an open file lies.
[ -e /proc/self/fd ] || stop '/proc is not mounted here'

# Compilers' results are kept between builds where ccache is at hand.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi
