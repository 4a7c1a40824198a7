#!/usr/bin/env bash
# Plants one fault for each check in a small tree and expects the check to name it.
# usage: planted-faults.sh SCRIPTS_FOLDER
set -euo pipefail
scripts=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

expect_fault() {
    local check=$1 wanted=$2 output
    if output=$("$scripts/$check" "$tree"); then
        echo "$check passed a tree with a fault"
        exit 1
    fi
    grep -qF "$wanted" <<<"$output" || {
        echo "$check said '$output' instead of '$wanted'"
        exit 1
    }
}

mkdir -p "$tree/support" "$tree/project" "$tree/tests/support/text"
echo '#include "support/Error.h"' >"$tree/project/Good.cpp"
printf 'add_tests(\n    SOURCES\n        text/GoodTests.cpp)\n' >"$tree/tests/support/CMakeLists.txt"
touch "$tree/tests/support/text/GoodTests.cpp"
"$scripts/check-layers" "$tree"
"$scripts/check-tests-registered" "$tree"

echo '#include "project/Good.h"' >"$tree/support/Bad.h"
expect_fault check-layers "support/Bad.h:1: support must not include project/Good.h"

touch "$tree/tests/support/text/ForgottenTests.cpp"
expect_fault check-tests-registered "tests/support/text/ForgottenTests.cpp: in no CMakeLists.txt"

# What installs, as it is and then with a fault in each place that is judged.
source=$(dirname "$scripts")

# plant [FILE SED_COMMAND]
plant() {
    rm -rf "${tree:?}"/*
    cp -r "$source/packaging" "$source/CMakeLists.txt" "$source/CHANGELOG.md" "$tree"
    [ $# -eq 0 ] || sed -i "$2" "$tree/$1"
}
plant
"$scripts/check-packaging" "$tree"

plant packaging/linux/nl.kelvane.Navrel.desktop 's/^Categories=.*/Categories=Nonsense;/'
expect_fault check-packaging 'value "Nonsense'
plant packaging/linux/nl.kelvane.Navrel.metainfo.xml 's/<summary>.*//'
expect_fault check-packaging 'component-summary-missing'
plant packaging/man/navrel.1 's/^\.Sh FILES/.Hs FILES/'
expect_fault check-packaging 'skipping unknown macro: .Hs'
plant packaging/man/navrel.1 "s/^with the same menu where there is/$(printf 'x%.0s' {1..90})/"
expect_fault check-packaging "can't break line"
plant packaging/linux/navrel.service.in '/^NoNewPrivileges=/d'
expect_fault check-packaging 'navrel.service.in: exposed to '
plant packaging/debian/changelog '1s/0\.1/9.8/'
expect_fault check-packaging 'packaging/debian/changelog: the version is 9.8'
plant packaging/linux/nl.kelvane.Navrel.metainfo.xml 's/release version="0/release version="9/'
expect_fault check-packaging 'the version is 9.'

# A program as hardened as ours, and then with each kind of hardening taken away.

# compile [OPTION]
compile() {
    c++ -O2 -fPIE -pie -fstack-protector-strong -fstack-clash-protection $processor -D_GLIBCXX_ASSERTIONS \
        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -Wl,-z,relro,-z,now,-z,noexecstack "$@" \
        -o "$tree/guarded" "$(dirname "$0")/Guarded.cpp"
}
# expect_unhardened OPTION WANTED
expect_unhardened() {
    local output
    compile "$1"
    ! output=$("$scripts/check-hardening" "$tree/guarded") && [ "$output" = "$tree/guarded: $2" ] || {
        echo "check-hardening said '$output' instead of '$2'"
        exit 1
    }
}
processor=
[ "$(uname -m)" != x86_64 ] || processor=-fcf-protection
compile
"$scripts/check-hardening" "$tree/guarded"
expect_unhardened -no-pie "not position-independent"
expect_unhardened -Wl,-z,norelro "no read-only relocations"
expect_unhardened -Wl,-z,lazy "not bound at once"
expect_unhardened -Wl,-z,execstack "an executable stack"
expect_unhardened -fno-stack-protector "no stack protector"
expect_unhardened -U_FORTIFY_SOURCE "not fortified"
expect_unhardened -U_GLIBCXX_ASSERTIONS "no assertions of the standard library"
if [ "$(uname -m)" = x86_64 ]; then
    expect_unhardened -fcf-protection=none "no branch protection"
    expect_unhardened -fno-stack-clash-protection "stack pages are skipped"
fi
