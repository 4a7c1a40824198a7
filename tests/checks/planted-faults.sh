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

mkdir -p "$tree"/{support,project/store,scanning,desktop,tests/support/text}
cat >"$tree/project/Good.cpp" <<'END'
#include "project/store/Table.h"
#include "scanning/Scanner.h"
#include "support/core/Error.h"
namespace navrel {
namespace {
struct Hidden {};
} // namespace
Scanner::Result scan() { return Scanner::Result(1'000); }
} // namespace navrel
END
cat >"$tree/scanning/Scanner.h" <<'END'
#include "project/store/Table.h"
namespace navrel {
class Table;
class Scanner final : public Base {
    struct Hidden {};
    void scan();
};
} // namespace navrel
END
echo 'navrel_add_library(navrel_project_store SOURCES Table.cpp LINK navrel_support)' >"$tree/project/store/CMakeLists.txt"
printf 'navrel_add_library(navrel_project\n    SOURCES\n        Good.cpp\n    LINK navrel_project_store Qt6::Core)\n' \
    >"$tree/project/CMakeLists.txt"
echo 'navrel_add_library(navrel_scanning SOURCES Scanner.cpp LINK navrel_project_store)' >"$tree/scanning/CMakeLists.txt"
printf 'add_tests(\n    SOURCES\n        text/GoodTests.cpp)\n' >"$tree/tests/support/CMakeLists.txt"
echo 'struct Scanner {}; // of no namespace' >"$tree/tests/support/text/GoodTests.cpp"
"$scripts/check-layers" "$tree"
"$scripts/check-tests-registered" "$tree"

# plant_file FILE LINE...
plant_file() {
    printf '%s\n' "${@:2}" >"$tree/$1"
}
plant_file support/Bad.h '#include "project/Good.h"'
expect_fault check-layers "support/Bad.h:1: support must not include project/Good.h"
rm "$tree/support/Bad.h"
plant_file scanning/Bad.cpp '' '#include "project/Editor.h"'
expect_fault check-layers "scanning/Bad.cpp:2: scanning must not include project/Editor.h"
mkdir -p "$tree/editors/neovim"
plant_file editors/neovim/Bad.h '#include "editors/emacs/EmacsEditor.h"'
expect_fault check-layers "editors/neovim/Bad.h:1: editors/neovim must not include editors/emacs/EmacsEditor.h"
rm "$tree/editors/neovim/Bad.h"
plant_file scanning/Bad.cpp 'namespace navrel {' 'void Table::scan() {}' 'void Scanner::scan() {}' '}'
plant_file project/store/Table.h 'namespace navrel {' 'template <typename Record>' 'class Table {};' '}'
expect_fault check-layers "scanning/Bad.cpp:2: a body of Table of project/store"
rm "$tree/scanning/Bad.cpp"
cp "$tree/project/store/CMakeLists.txt" "$tree/kept"
plant_file project/store/CMakeLists.txt 'navrel_add_library(navrel_project_store' '    SOURCES Table.cpp' '    LINK' \
    '        navrel_support # the errors' '        navrel_scanning)'
expect_fault check-layers "project/store/CMakeLists.txt:5: project/store must not link navrel_scanning of scanning"
plant_file project/store/CMakeLists.txt 'navrel_add_library(navrel_project_store SOURCES Table.cpp)' \
    'target_link_libraries(navrel_project_store PRIVATE navrel_project)'
expect_fault check-layers "project/store/CMakeLists.txt:2: project/store must not link navrel_project of project"
mv "$tree/kept" "$tree/project/store/CMakeLists.txt"
plant_file desktop/Tray.cpp 'namespace navrel {' 'int scans() { return 1; }' 'struct Scanner : Base<int> {' '};' '}'
expect_fault check-layers "navrel::Scanner is defined in "
rm "$tree/desktop/Tray.cpp"
plant_file tests/support/text/GoodTests.cpp 'namespace navrel {' 'enum class Scanner : int {' '};' '}'
expect_fault check-layers "tests/support/text/GoodTests.cpp:2: navrel::Scanner is defined in scanning/Scanner.h too"

mkdir "$tree/protocol"
plant_file protocol/CompanionKeys.h 'inline const QString items = QStringLiteral("items");'
plant_file desktop/Reply.cpp 'reply.value(key::items);' 'reply.value(QStringLiteral("moreitems"));'
"$scripts/check-keys" "$tree"
plant_file desktop/Reply.cpp '' 'reply.value(QStringLiteral("items"));'
expect_fault check-keys "desktop/Reply.cpp:2: write key::items"
rm "$tree/desktop/Reply.cpp"

plant_file desktop/Window.h '/// What is on the main thread is no contract.' '/// A window. Main' '/// thread; shows itself.' 'class Window {};'
"$scripts/check-threads" "$tree" # an interface
plant_file desktop/Window.cpp '#include "desktop/Window.h"' 'void Window::show() { NAVREL_ASSERT_MAIN_THREAD(); }'
"$scripts/check-threads" "$tree"
sed -i 's/NAVREL_ASSERT_MAIN_THREAD();//' "$tree/desktop/Window.cpp"
expect_fault check-threads "desktop/Window.h:1: no assertion holds it to the main thread"
rm "$tree"/desktop/Window.*

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
expect_fault check-packaging "break line"
plant packaging/linux/navrel.service.in '/^CapabilityBoundingSet=/d'
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
