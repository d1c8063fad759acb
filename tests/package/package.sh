#!/usr/bin/env bash
# One step of the package's tests: package.sh STEP ARGUMENTS. The steps are the functions below.
set -euo pipefail

warnings="-Wall -Wextra -Wpedantic -Wshadow -Woverloaded-virtual -Werror"

# install BUILD PREFIX: a fresh prefix with what the build folder installs.
install() {
    rm -rf "$2"
    cmake --install "$1" --prefix "$2" >/dev/null
}

# headers PREFIX WORK: each installed header compiles, and links, with the flags that pkg-config gives.
headers() {
    mkdir -p "$2"
    PKG_CONFIG_PATH=$(find "$1" -name pkgconfig -type d)
    export PKG_CONFIG_PATH
    {
        find "$1/include/Kelvar" -name '*.h' -printf '#include "%P"\n' | sort
        echo 'int main() { return OruScene(QString(), QString(), QString()).mode(); }'
    } >"$2/headers.cpp"
    # shellcheck disable=SC2086,SC2046 # lists of flags
    g++ -std=c++17 -fPIC $warnings -o "$2/headers" "$2/headers.cpp" \
        $(pkg-config --cflags --libs $(basename -s .pc "$PKG_CONFIG_PATH"/*.pc))
}

# readme README SOURCE: the page of code is that source, to the letter.
# shellcheck disable=SC2016 # expressions of sed
readme() {
    diff <(sed -n '/^## A page of code/,/^```$/p' "$1" | sed '1,/^```cpp$/d; /^```$/d') <(sed -n '/^#include/,$p' "$2")
}

# consume PREFIX SOURCE BUILD [OPTION...]: a project that knows no more than the prefix configures and builds.
consume() {
    rm -rf "$3"
    cmake -S "$2" -B "$3" -G Ninja -DCMAKE_PREFIX_PATH="$1" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="$warnings" "${@:4}"
    cmake --build "$3"
}

# picture CHECK FILE ARGUMENTS COLOUR...: the picture that a program makes; the arguments are a list, with the
# program ahead.
picture() {
    local arguments
    IFS=';' read -r -a arguments <<<"$3"
    rm -f "$2"
    "${arguments[@]}"
    "$1" "$2" 960x720 "${@:4}"
}

# refused PROGRAM ARGUMENTS...: a program that cannot do what it is asked to says why in one line and exits with 1.
refused() {
    local said code=0
    said=$(QT_LOGGING_RULES='*=false' "$@" 2>&1 >/dev/null) || code=$? # Qt may have a word on the environment
    echo "$said"
    [[ $code == 1 && -n $said && $said != *$'\n'* ]]
}

# debian BUILD LINTIAN: all packages are made and lintian has no errors for them.
debian() {
    rm -f "$1"/package/*.deb
    (cd "$1" && cpack >/dev/null)
    "$2" --fail-on error --allow-root "$1"/package/*.deb
}

# needs FILE: the packages of our own that a package depends on, at any depth, and itself.
needs() {
    local own
    echo "$1"
    for own in $(dpkg-deb -f "$1" Depends | grep -o '\(lib\)\?kelvar[a-z0-9-]*' || true); do
        needs "$(ls "$(dirname "$1")/$own"_*.deb)"
    done
}

# binaries FOLDER: programs and libraries.
binaries() {
    find "$1" -type f -exec sh -c 'head -c 4 "$1" | grep -q ELF' sh {} \; -print
}

# owned FILE FOLDER: what the package's binaries ask for comes from packages that it depends on by itself.
owned() {
    local needs owners library libraries
    needs=$(dpkg-deb -f "$1" Depends | sed 's/([^)]*)//g' | tr ',|' '\n' | tr -d ' ')
    mapfile -t libraries < <(binaries "$2" | xargs objdump -p | sed -n 's/^ *NEEDED *//p' | grep -v '^libKelvar' | sort -u)
    owners=$(dpkg -S "${libraries[@]/#/*/}" | sed 's/:[^ ]*//')
    for library in "${libraries[@]}"; do
        if ! grep "/$library\$" <<<"$owners" | sed 's/ .*//' | grep -qxF "$needs"; then
            echo "nothing that $1 depends on brings $library" >&2
            return 1
        fi
    done
}

# alone BUILD PACKAGE FOLDER: the package, unpacked with those of our own that it needs, of the same version, has all
# libraries, and the tools know where those of others come from.
alone() {
    local package others
    rm -rf "$3"
    mkdir "$3"
    package=$(ls "$1/package/$2"_*.deb)
    others=$(dpkg-deb -f "$package" Depends | tr ',' '\n' | grep kelvar || true)
    if grep -v "(= $(dpkg-deb -f "$package" Version))" <<<"$others" | grep .; then
        return 1
    fi
    dpkg-deb -x "$package" "$3"
    owned "$package" "$3"
    needs "$package" | sort -u | while read -r package; do dpkg-deb -x "$package" "$3"; done
    if binaries "$3" | xargs ldd | grep -e 'not found' -e '=> .*libKelvar' | grep -v "=> $(realpath "$3")/"; then
        return 1
    fi
}

# missing PREFIX SOURCE BUILD COMPONENT: who asks for a component that is not installed is told so.
missing() {
    if consume "$1" "$2" "$3" "-DCOMPONENT=$4" 2>"$3.txt"; then
        return 1
    fi
    grep "The component $4 is not installed" "$3.txt"
}

# bare SOURCE BUILD OPTION...: configures without the tools of tests and packages; what is left out is asked for
# nowhere.
bare() {
    rm -rf "$2"
    cmake -S "$1" -B "$2" -G Ninja -DCLANG_FORMAT= -DGZIP= -DLINTIAN= -DDOXYGEN= "${@:3}"
    ! grep -e -lkelvar_ "$2/build.ninja"
}

"$@"
