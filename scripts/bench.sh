#!/usr/bin/env bash
# Measures the library beside its peers and the limit of each row, writes bench/RESULTS.md, and draws its rows in
# bench/ratios.svg. It takes some minutes, and 7 GiB of disk for the time. It waits until the load of its own build has
# gone, and refuses to measure where other programs run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

need cmake=cmake ninja-build=ninja rsync=rsync strace=strace g++=g++ pkg-config=pkg-config python3=python3 \
    libbenchmark-dev=/usr/include/benchmark/benchmark.h libboost-dev=/usr/include/boost/crc.hpp \
    libboost-iostreams-dev=/usr/lib/x86_64-linux-gnu/libboost_iostreams.so \
    libprotobuf-dev=/usr/include/google/protobuf/io/coded_stream.h libabsl-dev=/usr/include/absl/strings/str_split.h \
    libicu-dev=/usr/include/unicode/ucnv.h libpoco-dev=/usr/include/Poco/BinaryReader.h \
    python3-matplotlib=/usr/lib/python3/dist-packages/matplotlib libcapnp-dev=/usr/include/kj/io.h qtbase5-dev=/usr/include/x86_64-linux-gnu/qt5/QtCore/QDataStream

cmake --preset bench
cmake --build --preset bench

programs=build/bench/bench
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

load() { cut -d' ' -f1 /proc/loadavg; }
is_quiet() { awk '{ exit $1 > 0.5 }' /proc/loadavg; }
for ((waits = 0; waits < 30; ++waits)); do
    ! is_quiet || break
    sleep 10
done
is_quiet || stop "the machine's load is $(load), so other programs would be measured, too"
before=$(load)
"$programs/socle_bench" --benchmark_out="$scratch/full.json" "$@"
after=$(load)
# The same with a tenth of every size: how the cost of an item grows.
SOCLE_BENCH_SHRINK=10 "$programs/socle_bench" --benchmark_out="$scratch/tenth.json" \
    --benchmark_repetitions=3 "$@"

# peak <what> <socle_peak's words>...: a line of what, how much was done, and KiB.
peak() {
    printf '%s|%s\n' "$1" "$("$programs/socle_peak" "${@:2}")" >>"$scratch/peak"
}
truncate -s 1G "$scratch/from"
peak 'copy of a fork of 1 GiB' copy "$scratch/from" "$scratch/to"
rm -f "$scratch/from" "$scratch/to"
for folders in 100 1000; do
    python3 - "$scratch/tree" "$folders" <<'END'
import os, sys
for folder in range(int(sys.argv[2])):
    path = f"{sys.argv[1]}/{folder}"
    os.makedirs(path, exist_ok=True)
    for file in range(1000):
        os.close(os.open(f"{path}/file {file}.txt", os.O_CREAT | os.O_WRONLY))
END
    for family in io nio; do
        peak "walk of $folders folders of 1,000 files, $family::directory" "walk-$family" "$scratch/tree"
    done
done

bench/catalog.sh build/bench/examples/catalog/catalog >"$scratch/catalog"

# A page can be made of them again.
mkdir -p build/bench/measured
cp "$scratch"/{full.json,tenth.json,peak,catalog} build/bench/measured
cp bench/RESULTS.md "$scratch/before.md"
python3 bench/results.py "$scratch" "$before" "$after" "$(g++ --version | head -1)" >bench/RESULTS.md
# The distribution's own, which has the package.
/usr/bin/python3 bench/picture.py bench/RESULTS.md "$scratch/before.md" >bench/ratios.svg
echo 'written: bench/RESULTS.md and bench/ratios.svg'
