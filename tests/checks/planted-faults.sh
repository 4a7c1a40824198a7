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
