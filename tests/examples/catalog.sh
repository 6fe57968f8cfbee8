#!/usr/bin/env bash
# usage: catalog.sh <program> <folder of samples> <script that makes a tree>
# Catalogues of files of other programs and of awkward ones, and what becomes of them in other folders.
set -euo pipefail
program=$1 samples=$2 make_tree=$3
export TZ=America/New_York
# Beside the other scratch folders of the tests, where extended attributes are kept.
scratch=$(mktemp -d /var/tmp/socle_test_XXXXXX)
finish() { chmod -R u+w "$scratch" && rm -rf "$scratch"; }
trap finish EXIT
trap 'echo "failed at line $LINENO"' ERR
cd "$scratch"

fail() { echo "$*"; exit 1; }

# carry <status> <form> <from> <to>: errors go to err.
carry() {
    local status=0
    "$program" --to="$4" --forks="$2" "$3" >carried.xml 2>err || status=$?
    [ "$status" = "$1" ] || { cat err; fail "status $status, not $1: $2 $3 $4"; }
    [ ! -e "$4/.catalog.part" ] || fail "left behind in $4"
    if command -v xmllint >/dev/null; then xmllint --noout carried.xml; fi
}

# complaints <line>...: those lines were all, but for the sum.
complaints() {
    if [ $# -gt 0 ]; then printf 'catalog: %s\n' "$@"; fi | sort | diff - <(sed '$d' err | sort)
}

# about <folder>: what is the same in every form.
about() {
    "$program" --checksums "$1" 2>/dev/null |
        sed -E 's/ in="[^"]*"//; s/ as="[^"]*"//; s/<folder path="[^"]*"/<folder/; /<information/d; /<note>/d'
}

# said_of <name> <element> <catalogue>: what stands in the element of that file.
said_of() { sed -n "/name=\"$1\"/,/<\/file>/s/.*<$2[> ]\([^<]*\).*/\1/p" "$3"; }

# double <id> <offset> <length>...: the head of an AppleDouble file with these entries.
double() {
    printf '\0\5\26\7\0\2\0\0%016d' 0 | tr 0 '\0'
    local numbers="$*" n
    printf "$(printf '\\x%02x\\x%02x' $(($# / 3 >> 8)) $(($# / 3 & 255)))"
    for n in $numbers; do
        printf "$(printf '\\x%02x' $((n >> 24 & 255)) $((n >> 16 & 255)) $((n >> 8 & 255)) $((n & 255)))"
    done
}

# Sidecars as other programs wrote them.
"$program" "$samples/appledouble" >doubles.xml 2>err
while IFS='|' read -r name finder resource; do
    [ "$(said_of "$name" finder_info doubles.xml)" = "$finder" ] || fail "$name: other Finder information"
    [[ $(said_of "$name" resource doubles.xml) = size=\"$resource\"* ]] || fail "$name: other resource fork"
done <<'END'
Both Forks|4150504c536f436c200000000000000000000000000000000000000000000000|410
Bundle Flags|7273726352534544640000000000000000000000000000000000000000000000|596
Placed Icon|5445585443574945004400000000000000000000000000000000000000000000|410
five_entries|5445585443574945000000000000000000000000000000000000000000000000|410
moved_entry|504446204341524f01020102030405060708090a0b0c0d0e0f10111213141516|20
no_entry_nine||4
._version_one||0
version_one||0
END
"$program" --checksums "$samples/split" >split.xml 2>err
[[ $(said_of Placed_Icon finder_info split.xml) = 544558544357494500440025fff4* ]]
[ "$(said_of Placed_Icon created split.xml)" = 1999-01-24T05:20:00Z ]
carry 1 sidecar "$samples/appledouble" real
complaints "$samples/appledouble/five_entries has more than Finder information and a resource fork in ._five_entries" \
    "$samples/appledouble/moved_entry has more Finder information than a sidecar can hold" \
    "$samples/appledouble/no_entry_nine has more than Finder information and a resource fork in ._no_entry_nine"
cmp "real/Placed Icon.rsrc" "$samples/split/Placed_Icon.rsrc"

# A tree goes through all forms and comes back.
python3 "$make_tree" "$scratch" --depth 3 >/dev/null
carry 1 appledouble tree doubles
complaints "$scratch"/tree/links/{a.rsrc,dangling,file,loop,out,self,up}' is a link, and not carried'
python3 "$make_tree" "$scratch" --check >/dev/null
carry 0 ntfs doubles streams
carry 0 sidecar streams sidecars
# Links are left out, and names that a file of the library cannot have are mended.
about tree | sed -E '/<link /d; s/"(a\?b|star\*|dir\?mark)"/"\1"/; s/"a\?b"/"a_b"/; s/"star\*"/"star_"/
    s/"dir\?mark"/"dir_mark"/; s/"quo&quot;te"/"quo_te"/; s/"line\\x0afeed"/"line_feed"/
    s/"pipe\|&lt;&gt;"/"pipe___"/; s/"tab\\x09"/"tab_"/' >expected
for folder in doubles streams sidecars; do
    about $folder | diff expected - || fail "$folder is not like the tree"
done
for name in plain/x{,.rsrc,.info} nested/l0/l1/f{,.rsrc,.info} named/d.info named/x.rsrc{,.info} 'names/bad'$'\xff\xfe'; do
    cmp "tree/$name" "sidecars/$name"
done
[ "$(grep -c 'in="x:AFP_Resource"' carried.xml)" = 1 ]
[ "$(tail -c +83 doubles/plain/._x)" = 'resource of x' ]

# Again, there is nothing to do; and what is missing, or was interrupted, is made up for.
carry 0 sidecar streams sidecars
grep -q ' 0 files carried, 49 there already; 0 complaints' err
rm sidecars/plain/x sidecars/plain/z # as if the move of x had just come to its forks
mkdir sidecars/.catalog.part
cp sidecars/plain/x.rsrc sidecars/.catalog.part/part
: >sidecars/.catalog.part/part.info
carry 0 sidecar streams sidecars
grep -q ' 2 files carried, 47 there already; 0 complaints' err
about sidecars | diff expected -

# Streams that are no forks go along, or are missed.
mkdir old new_streams
"$program" --to=old --forks=ntfs "$samples/split" >/dev/null 2>err
if command -v getfattr >/dev/null; then
    id=$(getfattr --only-values -n user.socle.streams old/Placed_Icon | cut -c-32)
    stream=$(basename "$(ls -d old/.socle_streams/"$id"/* | head -1)")
    printf note >"old/.socle_streams/$id/note"
    [ -n "$stream" ]
    carry 0 ntfs old new_streams
    grep -rqx note new_streams/.socle_streams
    carry 1 appledouble old without
    complaints "$scratch/old/Placed_Icon has streams that are left out"
fi

# What only has a sidecar's name is a file, and a file keeps clear of the forks of another.
mkdir odd odd/._folder odd/y.rsrc
printf 'data' | tee odd/emacs odd/info odd/y odd/s >/dev/null
printf 'not a header' >odd/emacs.info
printf 'not a fork' >odd/._info
with_forks() { double 9 50 32 2 82 8 && printf TEXTttxt && head -c 24 /dev/zero && printf resource; }
with_forks | tee odd/._emacs odd/._y odd/._nobody >/dev/null
double 9 38 16 >odd/._short && printf 'TEXTttxt\1\2\3\4\5\6\0\0XX' >>odd/._short && : >odd/short
double >odd/._none && : >odd/none
double 2 38 5 >odd/._past && printf abcd >>odd/._past && : >odd/past
head -c 25 odd/._none >odd/._cut && : >odd/cut
{ double 9 50 32; head -c 2000 /dev/zero; } | { head -c 24; printf '\xff\xff'; cat; } >odd/._many && : >odd/many
mkfifo odd/pipe.rsrc odd/._s
printf 'data' >odd/pipe
carry 1 sidecar odd carried
complaints "$scratch/odd/pipe.rsrc is neither file nor folder, and not carried" \
    "$scratch/odd/._s is neither file nor folder, and not carried"
[ "$(cat carried/emacs carried/emacs.rsrc carried/emacs_1.info carried/y.rsrc carried/._info)" = \
    'dataresourcenot a headerresourcenot a fork' ]
[ -d carried/y_1.rsrc ] && [ -d carried/._folder ] && cmp odd/._nobody carried/._nobody
[ "$(dd if=carried/short.info bs=1 skip=65 count=8 status=none)" = TEXTttxt ]
for name in none past cut many; do
    cmp odd/._$name carried/._$name || fail "$name was taken for a sidecar"
done
"$program" odd 2>/dev/null | grep '<file name="emacs.info">' >/dev/null

# Nothing that is there is changed, and nothing goes through a link.
mkdir from from/sub busy busy/target
printf 'mine' | tee from/a from/b from/c from/d from/sub/e >/dev/null
with_forks >from/._b
cp from/._b busy/._a
printf 'theirs' | tee busy/._b busy/c >/dev/null
ln -s target/d busy/d
ln -s target busy/sub
cp -a busy before
carry 1 appledouble from busy
complaints "$scratch/from/a is not carried: it would get a fork that is not its own, $scratch/busy/._a" \
    "$scratch/from/b is not carried: another file is at $scratch/busy/._b" \
    "$scratch/from/c is not carried: another file is at $scratch/busy/c" \
    "$scratch/from/d is not carried: a folder or a link is at $scratch/busy/d" \
    "$scratch/from/sub is not carried: a file or a link is at $scratch/busy/sub"
diff -r --no-dereference before busy
ln -s busy link

# refused <words> <argument>...
refused() {
    if "$program" "${@:2}" >out 2>err; then fail "no complaint: ${*:2}"; fi
    grep -qF -- "$1" err || fail "not \"$1\" but: $(cat err)"
}
refused 'is a link' --to=link from
refused 'is no folder' --to=busy/c from
refused 'is no folder' --to=missing/folder from
refused 'is no folder' missing
refused 'one folder lies in the other' --to=from/sub from
refused 'one folder lies in the other' --to=. from
refused 'sidecar, appledouble or ntfs' --to=new --forks=other from
refused 'unknown parameter' --other from
[ ! -e new ]
if "$program" from >/dev/full 2>err; then fail 'a full disk, and no complaint'; fi
(trap '' XFSZ && ulimit -f 0 && ! "$program" --to=full from 2>&1 >/dev/null) | grep 'cannot write' >/dev/null
[ "$(find full -type f | wc -l)" = 0 ]
if command -v flock >/dev/null; then
    mkdir -p held/.catalog.part
    exec 9>held/.catalog.part/lock
    flock 9
    refused 'another run is at work' --to=held from
    exec 9>&-
    carry 0 sidecar from held
fi
if [ "$(id -u)" != 0 ]; then
    mkdir half
    mkdir -m 0 half/closed
    printf 'data' >half/unread && chmod 0 half/unread
    carry 1 sidecar half open
    chmod 700 half/closed
    grep -q 'half/closed was not walked to its end' err
    grep -q 'half/closed may have forks that cannot be read' err
    grep -q 'half/unread cannot open file' err
    grep -q '<folder name="closed"' carried.xml && [ -z "$(find open -type f)" ]
fi
if command -v script >/dev/null; then
    script -qec "'$program' --to=bar from" /dev/null </dev/null | grep '\[#*\.*\] [0-9]*%' >/dev/null
fi
