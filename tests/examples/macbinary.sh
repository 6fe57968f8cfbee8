#!/usr/bin/env bash
# usage: macbinary.sh <program> <folder of samples> <what it prints for them>
# What it shows of MacBinary files, and of damaged ones; then it unpacks them into files with side forks, and packs them
# again.
set -euo pipefail
program=$1 samples=$2 expected=$3
export TZ=America/New_York # for the dates
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$samples"/*.bin "$scratch"
cd "$scratch"

fail() { echo "$*"; exit 1; }

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

# wrong <words> <argument>...: what the command line is refused with.
wrong() {
    printf "macbinary: %s\nTry 'macbinary --help'.\n" "$1" >errors
    expect 2 nothing errors "${@:2}"
}
# named <file> <name as printf takes it>: a file of the first generation with another name, and one byte in each fork.
named() {
    head -c 128 version_one.bin >"$1"
    patch "$1" 1 "$(printf '\\%03o' "$(printf "$2" | wc -c)")$2"
    patch "$1" 83 '\0\0\0\1\0\0\0\1'
    { printf d; head -c 127 /dev/zero; printf r; head -c 127 /dev/zero; } >>"$1"
}

# refused <words of the message> <argument>...: and nothing is left in the folder.
refused() {
    ls -A folder >before
    if "$program" "${@:2}" >out 2>err; then fail "no complaint: ${*:2}"; fi
    grep -qF -- "$1" err || fail "not \"$1\" but: $(cat err)"
    ls -A folder | diff before - || fail "left behind: ${*:2}"
}

: >nothing
expect 0 "$expected" nothing both_forks.bin bundle_flags.bin empty.bin placed_icon.bin read_me.bin version_one.bin

# Every damaged file gets its line, and the good ones between them are shown all the same.
changed() { cp "$1" "$name" && patch "$name" "$2" "$3"; }
mkdir folder
mkfifo pipe
while IFS='|' read -r name make words; do
    eval "$make"
    echo "macbinary: $name $words"
done >errors <<'END'
short|head -c 127 both_forks.bin >short|is too short for a MacBinary header: 127 of 128 bytes
void|: >void|is too short for a MacBinary header: 0 of 128 bytes
crc|changed both_forks.bin 91 '\0'|has a damaged MacBinary header: its CRC is 0xf104, but it says 0x7ce0
stored_crc|changed both_forks.bin 125 '\1'|has a damaged MacBinary header: its CRC is 0x7ce0, but it says 0x7c01
third|changed both_forks.bin 122 '\202'|has a damaged MacBinary header: its CRC is 0x29b3, but it says 0x7ce0
no_name|changed version_one.bin 1 '\0'|does not begin with a MacBinary header
long_name|changed version_one.bin 1 '\100'|does not begin with a MacBinary header
zero_in_name|changed version_one.bin 3 '\0'|does not begin with a MacBinary header
not_zero_0|changed version_one.bin 0 '\1'|does not begin with a MacBinary header
not_zero_74|changed version_one.bin 74 '\1'|does not begin with a MacBinary header
not_zero_82|changed version_one.bin 82 '\1'|does not begin with a MacBinary header
negative_fork|changed version_one.bin 87 '\200'|does not begin with a MacBinary header
folder||is no file
pipe||is no file
missing||cannot open file: No such file or directory
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
refused 'short is too short' --xml "$strange" short empty.bin
grep -qF '<file path="a&amp;&lt;&quot;'"'"'&gt;\\\xff\x01é">' out
grep -qF '<location v="-2" h="258"/>' out
[ "$(grep -c '<file ' out)" = 2 ]
if command -v xmllint >/dev/null; then
    xmllint --noout out
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
if "$program" empty.bin >/dev/full 2>err; then fail 'a full disk, and no complaint'; fi
grep -qx 'macbinary: cannot write to the standard output' err

# Every sample comes back as it was, but for what differs by the generation: both versions and the CRC.
differ() { case $1 in version_one.bin) echo '123 124 125 126' ;; esac; }
for sample in *.bin; do
    host_name=$("$program" --unpack=folder "$sample")
    "$program" --pack="again_$sample" "$host_name"
    [ "$(cmp -l "$sample" "again_$sample" | awk '{ printf "%s%s", sep, $1; sep = " " }')" = "$(differ "$sample")" ] \
        || fail "$sample: $(cmp -l "$sample" "again_$sample")"
    "$program" "again_$sample" | grep ', agrees$' >/dev/null
done
[ "$(ls -A folder | wc -l)" = 16 ]
[ "$(stat -c %Y 'folder/Placed Icon')" = $((3000000601 - 2082844800)) ]
[ "$(wc -c <'folder/Both Forks.info')" = 128 ]

# Other programs read what was packed.
if command -v macunpack >/dev/null && command -v hcopy >/dev/null; then
    mkdir others
    head -c 819200 /dev/zero >others/disk
    HOME=$PWD hformat -l disk others/disk >/dev/null
    for sample in again_*.bin; do
        HOME=$PWD hcopy -m "$sample" :
        HOME=$PWD hcopy -m ":$("$program" "$sample" | sed -n 's/^  name *//p')" others/back.bin
        cmp "$sample" others/back.bin
        (cd others && rm -f ./*.data ./*.rsrc && macunpack -3 "../$sample")
        size() { stat -c %s others/*."$1"; }
        "$program" "$sample" | grep "data fork     $(size data) bytes" >/dev/null
        "$program" "$sample" | grep "resource fork $(size rsrc) bytes" >/dev/null
    done
    HOME=$PWD humount
else
    echo 'left out: macutils and hfsutils are not installed'
fi
if command -v file >/dev/null; then
    file again_both_forks.bin | grep "MacBinary II.*33 bytes.*410 bytes" >/dev/null
fi
rm -rf folder && mkdir folder

# Names: what no file system takes is mended, and nothing gets out of the folder or goes through a link.
ln -s ../target folder/link
ln -s /nowhere folder/dangling
: >folder/side.rsrc
: >folder/owner
while IFS='|' read -r name host_name; do
    named hostile "$name"
    printed=$("$program" --unpack=folder hostile)
    [ "${printed#folder/}" = "$host_name" ] || fail "$name became $printed, not $host_name"
    [ "$(cat "folder/$host_name") $(cat "folder/$host_name.rsrc")" = 'd r' ] || fail "$name: wrong forks"
    [ "$(wc -c <"folder/$host_name.info")" = 128 ]
done <<'END'
../x|.._x
..|_1..
.|_1.
/etc/x|_etc_x
C:|C_
C:x|C_x
a:b|a_b
c\\d|c_d
a?*|a__
line\nend|line_end
twice|twice
twice|twice_1
Caf\216|Café
link|link_1
dangling|dangling_1
side|_side
owner.rsrc|_owner.rsrc
macbinary.part|macbinary_1.part
END
[ ! -e target ] && [ ! -e x ] && [ ! -s folder/owner ] && [ ! -s folder/side.rsrc ]
[ "$(readlink folder/link)" = ../target ]
"$program" --pack=cafe.bin folder/Café
"$program" cafe.bin | grep 'name          Café' >/dev/null

# Damage is found before anything is made.
head -c 128 both_forks.bin >only_header
named far x && patch far 87 '\177\377\377\377'
named second x && patch second 120 '\377\377' # a second header that is longer than the file
refused 'is cut short: it has 128 of 666 bytes' --unpack=folder only_header
refused 'is cut short: it has 665 of 666 bytes' --unpack=folder cut
refused 'is cut short: it has 384 of 2147483903 bytes' --unpack=folder far
refused 'is cut short' --unpack=folder second
refused 'is no file' --unpack=folder /dev/null
refused 'too short for a MacBinary header' --unpack folder void
refused 'No such file' --unpack folder both_forks
refused 'is no folder' --unpack=missing empty.bin
refused 'is no folder' --unpack=empty.bin empty.bin
refused 'cannot open' --unpack=folder missing
refused 'cannot open' --pack=folder/new missing
refused 'is there already' --pack=folder/owner read_me.bin
refused 'is there already' --pack=folder/dangling read_me.bin
refused 'cannot create' --pack=missing/new read_me.bin
truncate -s 2147483648 huge
refused 'too long for MacBinary' --pack=folder/new huge
[ ! -s folder/owner ]
# A full disk, as a limit of the system has it.
(trap '' XFSZ && ulimit -f 0 && ! "$program" --unpack=folder both_forks.bin 2>&1) | grep 'cannot write to' >/dev/null
(trap '' XFSZ && ulimit -f 0 && ! "$program" --pack=folder/new read_me.bin 2>&1) | grep 'cannot write to' >/dev/null
ls -A folder | diff before -

# From a pipe, whatever comes before; one that ends too early leaves nothing.
cat both_forks.bin | "$program" --unpack folder - >/dev/null
cmp 'folder/Both Forks.rsrc' <(tail -c +257 both_forks.bin | head -c 410)
rm folder/Both*
ls -A folder >before
if head -c 600 both_forks.bin | "$program" --unpack folder - 2>err; then fail 'a pipe that ends, and no complaint'; fi
grep -q 'ended before all of it was read' err
ls -A folder | diff before -

# Without a terminal there is no bar; on one there is, and it goes again.
"$program" --unpack=folder both_forks.bin 2>err >out && [ ! -s err ]
if command -v script >/dev/null; then
    script -qec "'$program' --unpack=folder both_forks.bin" /dev/null >typed </dev/null
    grep -q '\[#*\] 100%' typed
else
    echo 'left out: script is not installed'
fi

# A walk shows each file once, with its forks, and does not follow links.
mkdir -p walked/inner
"$program" --unpack=walked/inner both_forks.bin >/dev/null
ln -s .. walked/up
printf 'x' >$'walked/odd\n\xff'
"$program" --walk walked >out
diff - out <<'END'
walked
    inner/
        Both Forks  data 33, resource 410, APPL SoCl
    odd\x0a\xff  data 1, resource 0
    up/
END
refused 'is no folder' --walk both_forks.bin
