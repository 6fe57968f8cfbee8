#!/usr/bin/env bash
# usage: macbinary.sh <program> <folder of samples> <what it prints for them>
set -euo pipefail
program=$1 samples=$2 expected=$3
export TZ=America/New_York # for the dates
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$samples"/*.bin "$scratch"
cd "$scratch"

# patch <file> <offset> <bytes as printf takes them>
patch() { printf "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none; }

# expect <status> <standard output> <standard error> <argument>...
expect() {
    local status=0
    "$program" "${@:4}" >out 2>err || status=$?
    diff -u --label expected --label printed "$2" out
    diff -u --label 'expected errors' --label 'printed errors' "$3" err
    [ "$status" = "$1" ] || { echo "status $status, not $1: ${*:4}"; exit 1; }
}

: >nothing
expect 0 "$expected" nothing both_forks.bin bundle_flags.bin empty.bin placed_icon.bin read_me.bin version_one.bin

# Every damaged file gets its line, and the good ones between them are shown all the same.
head -c 127 both_forks.bin >short
: >void
cp both_forks.bin crc && patch crc 91 '\0'
cp both_forks.bin stored_crc && patch stored_crc 125 '\1'
cp both_forks.bin third && patch third 122 '\202'
cp version_one.bin no_name && patch no_name 1 '\0'
cp version_one.bin long_name && patch long_name 1 '\100'
cp version_one.bin zero_in_name && patch zero_in_name 3 '\0'
for at in 0 74 82; do cp version_one.bin not_zero_$at && patch not_zero_$at $at '\1'; done
cp version_one.bin negative_fork && patch negative_fork 87 '\200'
mkdir folder
mkfifo pipe
cat >errors <<'END'
macbinary: short is too short for a MacBinary header: 127 of 128 bytes
macbinary: void is too short for a MacBinary header: 0 of 128 bytes
macbinary: crc has a damaged MacBinary header: its CRC is 0xf104, but it says 0x7ce0
macbinary: stored_crc has a damaged MacBinary header: its CRC is 0x7ce0, but it says 0x7c01
macbinary: third has a damaged MacBinary header: its CRC is 0x29b3, but it says 0x7ce0
macbinary: no_name does not begin with a MacBinary header
macbinary: long_name does not begin with a MacBinary header
macbinary: zero_in_name does not begin with a MacBinary header
macbinary: not_zero_0 does not begin with a MacBinary header
macbinary: not_zero_74 does not begin with a MacBinary header
macbinary: not_zero_82 does not begin with a MacBinary header
macbinary: negative_fork does not begin with a MacBinary header
macbinary: folder is no file
macbinary: pipe is no file
macbinary: missing cannot open file: No such file or directory
END
expect 1 "$expected" errors both_forks.bin short void bundle_flags.bin crc stored_crc third empty.bin placed_icon.bin \
    no_name long_name zero_in_name not_zero_0 not_zero_74 not_zero_82 negative_fork folder pipe read_me.bin missing \
    version_one.bin

# Names and codes are Mac Roman and may hold anything.
cp version_one.bin odd && patch odd 1 '\012Caf\216 \033\\\360\312\177' && patch odd 65 'a\0\377\n'
patch odd 73 '\022' && patch odd 101 '\064' && patch odd 75 '\377\376\1\2'
{
    printf 'odd\n'
    printf '  name          %s\n' 'Café \x1b\\\xf0\xca\x7f'
    printf '  type          %s\n' 'a\x00ˇ\x0a'
    printf '  creator       SoCl\n  Finder flags  0x1234\n  location      v -2, h 258\n'
} >odd.expected
"$program" odd >out
head -6 out | diff -u odd.expected -

# As XML, whatever names and paths hold.
strange=$'a&<"\'>\\\xff\x01\xc3\xa9'
cp odd "$strange" && patch "$strange" 3 '&<"'
if "$program" --xml "$strange" short empty.bin >report.xml 2>err; then
    echo 'a damaged file, and no complaint'
    exit 1
fi
grep -q 'short is too short' err
grep -qF '<file path="a&amp;&lt;&quot;'"'"'&gt;\\\xff\x01é">' report.xml
grep -qF '<location v="-2" h="258"/>' report.xml
[ "$(grep -c '<file ' report.xml)" = 2 ]
if command -v xmllint >/dev/null; then
    xmllint --noout report.xml
else
    echo 'left out: xmllint is not installed'
fi

# What is cut short is told, also when it is only shown, and each file is tested to its end.
head -c 665 both_forks.bin >cut
printf 'macbinary: cut is cut short: it has 665 of 666 bytes\n' >errors
sed -n '/^both_forks/,/header CRC/p' "$expected" | sed 's/^both_forks.bin$/cut/' >cut.expected
expect 1 cut.expected errors cut
printf 'both_forks.bin is whole: 33 and 410 bytes\nempty.bin is whole: 0 and 0 bytes\n' >whole
expect 1 whole errors --test both_forks.bin cut empty.bin
printf -- '- is whole: 33 and 410 bytes\n' >whole
cat both_forks.bin | expect 0 whole nothing -t -
printf 'macbinary: - is cut short: it has 665 of 666 bytes\n' >errors
cat cut | expect 1 nothing errors -t -

# wrong <words> <argument>...: what the command line is refused with.
wrong() {
    printf "macbinary: %s\nTry 'macbinary --help'.\n" "$1" >errors
    expect 2 nothing errors "${@:2}"
}
wrong 'unknown parameter "--wrong"' --wrong
wrong 'the file is missing'
wrong 'the file is missing' --test --
wrong '--unpack takes a value: --unpack FOLDER' empty.bin --unpack
wrong '--unpack takes a value: --unpack FOLDER' --unpack= empty.bin
wrong '--pack takes one file' --pack new read_me.bin empty.bin
wrong '--xml takes no value' --xml=no empty.bin
wrong '--test, --unpack, --pack, --walk and --xml do not go together' --unpack=folder --pack=new empty.bin
"$program" --help >out
grep -q -- '--unpack, -u FOLDER' out
"$program" --version | grep -q '^macbinary .*[0-9]'
cp empty.bin ./--xml
"$program" -- --xml >out
head -1 out | grep -qx -- --xml
if "$program" empty.bin >/dev/full 2>err; then
    echo 'a full disk, and no complaint'
    exit 1
fi
grep -qx 'macbinary: cannot write to the standard output' err
