# Sourced by the other scripts: what they need from the distribution, installed only where it is missing.

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
    command -v apt-get >/dev/null || { echo "please install: ${missing[*]}" >&2; exit 1; }
    printf 'installing %s\n' "${missing[*]}"
    as_root apt-get update -q
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# Compilers' results are kept between builds where ccache is at hand.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi
