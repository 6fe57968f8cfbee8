# Sourced by the scripts that build for other machines, compilers and standard libraries.

# The host's tables of codes and letters as a machine of another byte order has them, in build/tables: its compiler's
# packages lack them.
fetch_tables() {
    local machine=$1 folder=$PWD/build/tables/$1 options
    [ ! -e "$folder/gconv" ] || return 0
    mkdir -p "$folder/apt/lists/partial" "$folder/apt/archives/partial"
    # Everything of apt's own is kept there, and this machine stays what it is.
    options=(-q -o APT::Architecture="$machine" -o APT::Architectures="$machine" -o APT::Sandbox::User=
        -o Dir::State::Lists="$folder/apt/lists" -o Dir::State::status=/dev/null -o Dir::Cache="$folder/apt")
    apt-get "${options[@]}" update
    (cd "$folder/apt" && apt-get "${options[@]}" download libc6 libc-bin)
    for package in "$folder"/apt/*.deb; do
        dpkg-deb --extract "$package" "$folder/apt/root"
    done
    cp -r "$folder/apt/root/usr/lib/locale" "$folder/locale"
    cp -r "$folder/apt/root/usr/lib/$machine-linux-gnu/gconv" "$folder/gconv"
    rm -r "$folder/apt"
}

# The release number of the newest libc++ that the distribution has with its compiler and its own shared library: the
# headers of one release do not link with the library of another.
newest_libcxx() {
    local release
    for release in $(apt-cache search --names-only '^libc\+\+-[0-9]+-dev$' | sed 's/^libc++-//; s/-dev .*//' | sort -rn); do
        if apt-cache show "clang-$release" >/dev/null 2>&1 && apt-cache show "libc++1-$release" >/dev/null 2>&1; then
            echo "$release"
            return
        fi
    done
    return 1
}

# configure_port <preset>: installs what it takes, and configures it.
configure_port() {
    local release options=()
    need cmake=cmake ninja-build=ninja tzdata=/usr/share/zoneinfo/America/New_York python3=python3
    case $1 in
        s390x)
            need g++-s390x-linux-gnu=s390x-linux-gnu-g++ qemu-user-static=qemu-s390x-static googletest=/usr/src/googletest
            fetch_tables s390x
            ;;
        i686)
            need g++-i686-linux-gnu=i686-linux-gnu-g++ qemu-user-static=qemu-i386-static googletest=/usr/src/googletest \
                libc6-i386=/usr/lib32/gconv
            ;;
        libcxx)
            release=$(newest_libcxx) || { as_root apt-get update -q && release=$(newest_libcxx); } ||
                stop 'the distribution has no libc++'
            need "clang-$release=clang++-$release" googletest=/usr/src/googletest \
                "libc++-$release-dev=/usr/lib/llvm-$release/include/c++/v1/version" \
                "libc++abi-$release-dev=/usr/lib/llvm-$release/lib/libc++abi.so"
            options=(-DCMAKE_C_COMPILER="clang-$release" -DCMAKE_CXX_COMPILER="clang++-$release")
            ;;
        gcc-c++23) need g++=g++ libgtest-dev=/usr/include/gtest/gtest.h ;;
        clang-c++23) need clang=clang++ libgtest-dev=/usr/include/gtest/gtest.h ;;
    esac
    cmake --preset "$1" "${options[@]}"
}
