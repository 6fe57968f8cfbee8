#!/usr/bin/env bash
# usage: versions.sh <version>   whatever tells the version by hand tells this one.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
status=0
told() {
    grep -qF "$2" "$1" || { echo "$1 does not say $2"; status=1; }
}
told packaging/vcpkg/socle/vcpkg.json "\"version\": \"$1\""
told CHANGELOG.md "## $1"
told README.md "find_package(socle ${1%.*} REQUIRED)"
exit $status
