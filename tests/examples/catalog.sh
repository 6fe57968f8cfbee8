#!/usr/bin/env bash
# usage: catalog.sh <program> <folder of samples> <script that makes a tree>
# Catalogues of files of other programs and of awkward ones, and what becomes of them in other folders.
set -euo pipefail
program=$1 samples=$2 make_tree=$3
export TZ=America/New_York
# Beside the other scratch folders of the tests, where extended attributes are kept.
scratch=$(mktemp -d /var/tmp/socle_test_XXXXXX)
finish() { chmod -R u+rwx "$scratch" && rm -rf "$scratch"; }
trap finish EXIT
trap 'echo "failed at line $LINENO"' ERR
cd "$scratch"

fail() { echo "$*"; exit 1; }

# run <status> <argument>...: the output goes to out, errors to err. A temporary folder is never left.
run() {
    local status=0
    "$program" "${@:2}" >out 2>err || status=$?
    [ "$status" = "$1" ] || { cat err; fail "status $status, not $1: ${*:2}"; }
    [ -z "$(find . -name '.catalog.part')" ] || fail "left behind by ${*:2}"
}

# carry <status> <form> <from> <to> <argument>...
carry() {
    run "$1" --to="$4" --forks "$2" --output carried.xml "${@:5}" "$3"
    if command -v xmllint >/dev/null; then xmllint --noout carried.xml; fi
}

# complaints <line>...: those lines were all, but for the summary.
complaints() {
    if [ $# -gt 0 ]; then printf 'catalog: %s\n' "$@"; fi | sort |
        diff - <(sed -E '/^catalog: ([0-9]+ (files?,|times:)|left out:|names changed:)/d' err | sort)
}

# summary <line>...: those are in it.
summary() {
    local line
    for line in "$@"; do
        grep -qF -- "$line" err || { cat err; fail "no \"$line\""; }
    done
}

# refused <words> <argument>...
refused() {
    if "$program" "${@:2}" >out 2>err; then fail "no complaint: ${*:2}"; fi
    grep -qF -- "$1" err || fail "not \"$1\" but: $(cat err)"
}

# about <folder>: what is the same in every form.
about() {
    "$program" --checksums "$1" 2>/dev/null |
        sed -E 's/ in="[^"]*"//; s/ as="[^"]*"//; s/<folder path="[^"]*"/<folder/; /<information/d; /<note>/d' |
        sed -E '4,5d' # the dates of the top
}

# double <id> <offset> <length>...: the head of an AppleDouble file with these entries.
double() {
    printf '\0\5\26\7\0\2\0\0%016d' 0 | tr 0 '\0'
    local numbers="$*" n
    printf "$(printf '\\x%02x\\x%02x' $(($# / 3 >> 8)) $(($# / 3 & 255)))"
    for n in $numbers; do
        printf "$(printf '\\x%02x' $((n >> 24 & 255)) $((n >> 16 & 255)) $((n >> 8 & 255)) $((n & 255)))"
    done
}

# Sidecars as other programs wrote them; what is said of these is told by everywhere.sh.
carry 1 sidecar "$samples/appledouble" real
cmp "real/Placed Icon.rsrc" "$samples/split/Placed_Icon.rsrc"

# And as others read ours: Finder information and resource fork are entries of their own.
carry 0 appledouble real ours
if command -v lsar >/dev/null; then
    # As a sidecar in an archive, the way they travel.
    for name in 'Both Forks' 'Placed Icon' moved_entry; do
        (cd ours && cp "._$name" sample && lsar -j sample | grep -q '"XADIsResourceFork": *1') || fail "lsar: $name"
        (cd ours && unar -q -f -k hidden -o taken sample && tail -c +83 "._$name" |
            cmp - <(tail -c +83 taken/._*)) || fail "unar: $name"
        rm -rf ours/taken ours/sample
    done
fi

# A tree goes through all forms and comes back.
python3 "$make_tree" "$scratch"
outside=$(tar c outside | cksum)
carry 1 appledouble tree doubles
complaints tree/links/{a.rsrc,dangling,file,loop,out,self,up}' is a link, and not carried'
summary '; 49 files carried, 0 there already; 7 complaints' '7 times: is a link, and not carried' 'names changed: 7'
[ "$(tar c outside | cksum)" = "$outside" ]
carry 0 ntfs doubles streams
carry 0 sidecar streams sidecars
# Links are left out, and names that a file of the library cannot have are mended.
about tree | sed -E '/<link /,/<\/link>/d; s/"(a\?b|star\*|dir\?mark)"/"\1"/; s/"a\?b"/"a_b"/; s/"star\*"/"star_"/
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

# Modes and dates are those of the source, of folders and of the top one too.
kept() { (cd "$1" && find plain modes nested -type d -o -name x -o -name program -o -name readonly) | sort |
    while read -r name; do stat -c "%a %Y $name" "$1/$name"; done; stat -c '%a %Y' "$1"; }
kept tree | diff - <(kept doubles)
kept tree | diff - <(kept sidecars)
[ "$(stat -c %a doubles/modes/rodir doubles/plain/._x | tr '\n' ' ')" = '555 644 ' ]
mkdir -m 700 private && printf x >private/secret && chmod 600 private/secret
ln private/secret private/second
carry 1 sidecar private open_hand
[ "$(stat -c %a open_hand open_hand/secret | tr '\n' ' ')" = '700 600 ' ]
complaints
summary 'left out: 2 hard links (--preserve=links)'
carry 0 sidecar private linked --preserve=links
[ linked/secret -ef linked/second ]
carry 0 sidecar private linked --preserve=links,owner
summary ' 0 files carried, 2 there already; 0 complaints'
truncate -s 20G private/huge && printf end >>private/huge
rm private/second
carry 0 sidecar private sparse --verify
[ "$(stat -c %s sparse/huge)" = $((20 * 1024 * 1024 * 1024 + 3)) ] && [ "$(du -k sparse/huge | cut -f1)" -lt 1000 ]
rm private/huge sparse/huge
if command -v setfattr >/dev/null && setfattr -n user.note -v kept private/secret; then
    carry 1 sidecar private bare
    summary 'left out: 1 files with extended attributes (--preserve=xattrs)'
    carry 0 sidecar private noted --preserve all
    [ "$(getfattr --only-values -n user.note noted/secret)" = kept ]
fi
if command -v setfacl >/dev/null && setfacl -m u:12345:r private/secret 2>/dev/null; then
    carry 1 sidecar private without_acls --preserve xattrs
    summary 'left out: 1 ACLs (--preserve=acls)'
    carry 0 sidecar private with_acls --preserve xattrs,acls
    diff <(cd private && getfacl -n secret) <(cd with_acls && getfacl -n secret)
fi

# Again, there is nothing to do; and what is missing, or was interrupted, is made up for.
carry 0 sidecar streams sidecars
summary ' 0 files carried, 49 there already; 0 complaints'
rm sidecars/plain/x sidecars/plain/z # as if the move of x had just come to its forks
mkdir sidecars/.catalog.part
cp sidecars/plain/x.rsrc sidecars/.catalog.part/7
: >sidecars/.catalog.part/7.info
carry 0 sidecar streams sidecars --verify
summary ' 2 files carried, 47 there already; 0 complaints'
about sidecars | diff expected -

# What an earlier run complained of comes again; other bytes are found, and a changed source is carried on demand.
cp -a "$samples/appledouble" again
carry 1 sidecar again told && mv err first
carry 1 sidecar again told && diff <(grep -v ' files, ' first) <(grep -v ' files, ' err)
chmod 600 'told/Both Forks'
carry 1 sidecar again told
summary 'again/Both Forks was not given its permissions'
chmod 644 'told/Both Forks'
touch -r told/moved_entry date && printf 'X' | dd of=told/moved_entry.rsrc conv=notrunc status=none
touch -r date told/moved_entry
carry 1 sidecar again told
carry 1 sidecar again told --verify
summary 'again/moved_entry is not carried, as a file with other bytes is there, which --update replaces: told/moved_entry'
carry 1 sidecar again told --verify --update
summary ', 1 replaced; '
carry 1 sidecar again told --verify
summary ' there already; '
printf more >>again/version_one && touch -d '2030-01-01 12:00:00' again/version_one
carry 1 sidecar again told
summary 'again/version_one is not carried, as another file is there, which --update replaces: told/version_one'
run 1 --to told --update --dry-run again
summary ', 1 to replace; '
carry 1 sidecar again told --update
summary ', 1 replaced; '
cmp again/version_one told/version_one
printf newer >told/version_one && touch -d '2031-01-01' told/version_one
carry 1 sidecar again told --update
summary 'again/version_one is not carried, as a newer file is there: told/version_one'
[ "$(cat told/version_one)" = newer ]

# Streams that are no forks go along, or are missed.
mkdir old new_streams
cp -R "$samples/split" own
"$program" --to=old --forks=ntfs own >/dev/null 2>err
if command -v getfattr >/dev/null; then
    id=$(getfattr --only-values -m '^user[.]socle[.]streams[.]' old/Placed_Icon | cut -c-32)
    stream=$(basename "$(ls -d old/.socle_streams/"$id"/* | head -1)")
    printf note >"old/.socle_streams/$id/note"
    [ -n "$stream" ]
    carry 0 ntfs old new_streams --verify
    grep -rqx note new_streams/.socle_streams
    carry 1 appledouble old without
    summary 'left out: 1 files with other streams'
    carry 1 appledouble old without
    summary 'left out: 1 files with other streams'
    rm -rf without
    # In a part of the volume they are found, in a copy of a part they are missed.
    mkdir old/part && mv old/Placed_Icon old/part
    run 0 old/part
    grep -q '<resource' out
    cp -a old/part away
    run 1 away
    summary 'may have forks that cannot be read: ' '1 complaint'
    rm -r old away
fi
# A folder of the user's own with the name of their store is carried like any.
mkdir -p own/.socle_streams own/deep/.socle_streams && printf mine | tee own/.socle_streams/f own/deep/.socle_streams/f >/dev/null
carry 0 sidecar own taken
[ "$(cat taken/.socle_streams_1/f taken/deep/.socle_streams/f)" = minemine ]
summary 'names changed: 1'

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
complaints "odd/pipe.rsrc is neither file nor folder, and not carried" \
    "odd/._s is neither file nor folder, and not carried"
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
complaints "from/a is not carried, as it would get a fork that is not its own: busy/._a" \
    "from/b is not carried, as another file is there: busy/._b" \
    "from/c is not carried, as another file is there, which --update replaces: busy/c" \
    "from/d is not carried, as a folder or a link is there: busy/d" \
    "from/sub is not carried, as a file or a link is there: busy/sub"
summary 'left out: 1 files in folders that could not be made'
grep -q '<file name="e">' carried.xml
diff -r --no-dereference before busy
ln -s busy link
# The work folder is the program's own, or nobody's.
printf precious >victim
mkdir planted planted/.catalog.part
ln -s ../../victim planted/.catalog.part/lock
refused 'is in the way, as this program has not made it: planted/.catalog.part/lock' --to planted from
ln -sf ../../victim planted/.catalog.part/0 && rm planted/.catalog.part/lock
refused 'is in the way, as this program has not made it: planted/.catalog.part/0' --to planted from
rm -r planted/.catalog.part && ln -s ../planted_out planted/.catalog.part && mkdir planted_out
refused 'is in the way, as it is no folder: planted/.catalog.part' --to planted from
[ "$(cat victim)" = precious ] && [ "$(readlink planted/.catalog.part)" = ../planted_out ] && [ -z "$(ls planted_out)" ]
rm planted/.catalog.part

# What the command line is refused with.
while IFS='|' read -r words arguments; do
    # shellcheck disable=SC2086
    refused "$words" $arguments
done <<'END'
the target is a link|--to=link from
the target is no folder|--to busy/c from
failed: No such file or directory|--to=missing/folder from
is no folder|missing
one folder lies in the other|--to=from/sub from
one folder lies in the other|--to=. from
END
while IFS='|' read -r words arguments; do
    # shellcheck disable=SC2086
    run 2 $arguments
    summary "catalog: $words"
    [ ! -s out ]
done <<'END'
--forks takes sidecar, appledouble or ntfs|--to=new --forks=other from
--preserve takes owner, acls, xattrs, links or all, with commas between|--to new --preserve owner,none from
--forks, --update, --verify, --preserve and --dry-run go with --to|--verify from
unknown parameter "--other"|--other from
--to takes a value: --to FOLDER|--to= from
--to takes a value: --to FOLDER|from --to
--checksums takes no value|--checksums=no from
the folder is missing|--to new
one folder at a time|from busy
END
[ ! -e new ]
run 0 --help
grep -q -- '--to FOLDER' out && grep -q '^Exit status:' out
run 0 --version
mkdir -- -dash && printf x >-dash/x
run 0 -- -dash
grep -q '<file name="x">' out

# The catalogue goes where it is asked for, whole or not at all, and holds what was selected.
run 0 --quiet from
[ ! -s out ] && [ ! -s err ]
run 0 --to said --quiet from
[ ! -s out ] && [ ! -s err ]
printf old >from.xml && run 0 -o from.xml from
[ ! -s out ] && grep -q '<folder path="from">' from.xml && [ ! -e from.xml.part ]
run 1 --to nowhere --dry-run tree
summary '49 files to carry, 0 there already' && [ ! -e nowhere ]
run 0 --exclude 'sub' --exclude 'd' --quiet -o - from
[ "$(grep -c '<file name' out)" = 3 ]
run 0 --include '*.info' --include plain/x -o - tree
[ "$(grep -o '<file name="[^"]*"' out | tr '\n' ' ')" = '<file name="w.info" <file name="y.info" <file name="x" ' ]
if command -v jq >/dev/null; then
    run 0 --json --checksums tree
    [ "$(jq -r '[.. | objects | select(.kind == "file")] | length' out)" = 49 ]
    [ "$(jq -r '.. | objects | select(.name == "x" and .data.size == 10) | .resource.size' out)" = 13 ]
fi
if "$program" from >/dev/full 2>err; then fail 'a full disk, and no complaint'; fi
summary 'cannot write: No space left on device'
("$program" --checksums tree 2>err || [ $? = 1 ]) | true

# Names show as they were typed, and fit to be shown.
mkdir wild && : >"wild/$(printf 'lead\xf8\x88\x80\x80\x80_\xff_\xfc_\x1b[2J_\xc2\x9b2J')"
run 0 wild
grep -qF 'lead\xf8\x88\x80\x80\x80_\xff_\xfc_\x1b[2J_\xc2\x9b2J' out
if command -v xmllint >/dev/null; then xmllint --noout out; fi
(trap '' XFSZ && ulimit -f 0 && ! "$program" --to=full from 2>&1 >/dev/null) | grep '^catalog: from/a cannot write: ' >/dev/null
[ "$(find full -type f | wc -l)" = 0 ]
if command -v flock >/dev/null; then
    mkdir -p held/.catalog.part
    exec 9<held/.catalog.part
    flock 9
    refused 'another run is at work in held' --to=held from
    exec 9<&-
    carry 0 sidecar from held
fi
# Where two names may be the same, one file of them is carried, and the other is told, also the next time.
mkdir -p cases/Dir cases/dir folds && echo 1 >cases/Dir/x && echo 2 >cases/dir/y
echo 1 >cases/readme && cp cases/readme cases/README
truncate -s 16M image
PATH=$PATH:/usr/sbin:/sbin
if mkntfs -F -Q image >err 2>&1 && lowntfs-3g -o ignore_case,streams_interface=none image folds 2>>err; then
    for words in 'as another file is there' 'as this run has another file there'; do
        run 1 --to=folds/to cases
        summary "1 times: is not carried, $words" '1 times: is not carried, as this run has another folder there'
    done
    umount folds
else
    echo 'no file system that takes two names for one could be mounted'
fi
if [ "$(id -u)" != 0 ]; then
    mkdir half
    mkdir -m 0 half/closed
    printf 'data' >half/unread && chmod 0 half/unread
    carry 1 sidecar half open
    chmod 700 half/closed
    # Its copy is as old, or a second younger; the date of a folder that lets nobody in cannot be set.
    sed -i '/half\/closed was not given its date of creation$/d' err
    complaints "half/closed cannot open the folder: Permission denied" "half/unread cannot open file: Permission denied"
    grep -q '<folder name="closed"' carried.xml && grep -q '<file name="unread"' carried.xml
    [ -z "$(find open -type f)" ]
    chmod 0 open/closed
fi
if command -v script >/dev/null; then
    script -qec "'$program' --to=bar from" /dev/null </dev/null | grep '\[#*\.*\] [0-9]*%' >/dev/null
    script -qec "stty cols 20; '$program' --to=narrow from" /dev/null </dev/null | tr '\r' '\n' | LC_ALL=C tr -d '\200-\377' |
        awk 'length($0) > 30 && /\[#/ { exit 1 }'
fi
