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

# windowclass FOLDER: the window of the package unpacked there is of the class that its entry for the desktop says.
windowclass() {
    local viewer class window found
    class=$(sed -n 's/^StartupWMClass=//p' "$1/usr/share/applications/kelvar-view.desktop")
    "$1/usr/bin/kelvar-view" &
    viewer=$!
    # shellcheck disable=SC2064 # the process of now
    trap "kill $viewer" EXIT
    window=$(timeout 20 xdotool search --sync --onlyvisible --pid "$viewer" --class . | head -n 1)
    found=$(xprop -id "$window" WM_CLASS)
    echo "$found"
    [[ $found == *", \"$class\"" ]]
}

# entry FOLDER: the entry for the desktop is valid, and its program and its icons are there.
entry() {
    local entry=$1/usr/share/applications/kelvar-view.desktop name file side
    shopt -s nullglob # an icon is in no size where none was drawn
    desktop-file-validate "$entry"
    name=$(sed -n 's/^Icon=//p' "$entry")
    grep -q '<svg' "$1/usr/share/icons/hicolor/scalable/apps/$name.svg"
    for file in "$1"/usr/share/icons/hicolor/[0-9]*/apps/*; do
        side=$(basename "$(dirname "$(dirname "$file")")")
        [[ $(basename "$file") == "$name.png" && $(file "$file") == *"${side/x/ x }"* ]]
    done
    test -x "$1/usr/bin/$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$entry")"
}

# formats FOLDER SHARED WORK: each MIME type of the entries has suffixes, by shared-mime-info's file SHARED or by the
# package's own, which no other type claims; and files with all these suffixes are models to the viewer.
formats() {
    local type glob share=$1/usr/share models=()
    rm -rf "$3"
    mkdir -p "$3/mime/packages" "$3/models"
    cp "$2" "$share/mime/packages/kelvar-view.xml" "$3/mime/packages"
    XDG_DATA_DIRS=$3 update-mime-database "$3/mime"
    [[ $(grep -h '^MimeType=' "$share"/applications/* "$share"/thumbnailers/* | uniq | wc -l) == 1 ]]
    while read -r glob; do
        [[ $(awk -F: -v glob="$glob" '$3 == glob { print $2 }' "$3/mime/globs2" | sort -u | wc -l) == 1 ]] || {
            echo "$glob is claimed by another type, too" >&2
            return 1
        }
    done < <(sed -n 's/.*glob pattern="\(.*\)".*/\1/p' "$share/mime/packages/kelvar-view.xml")
    for type in $(sed -n 's/^MimeType=//p' "$share/applications/kelvar-view.desktop" | tr ';' ' '); do
        glob=$(grep -m 1 ":$type:" "$3/mime/globs2") || { echo "$type has no suffix" >&2; return 1; }
        models+=("$3/models/${#models[@]}${glob##*:\*}")
        echo damaged >"${models[-1]}"
    done
    "$1/usr/bin/kelvar-view" --out "$3/{name}.png" -- "${models[@]}" &>"$3/told" || [[ $? == 2 ]]
    ! grep 'known format' "$3/told"
}

# manual FOLDER: the pages of the manual have no mistakes, and tell each option that --help does.
manual() {
    local page option
    for page in "$1"/usr/share/man/man1/*; do
        [[ -z $(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null) ]]
        man -l "$page" | grep "$(basename "$page" .1.gz) " >/dev/null
    done
    for option in $("$1/usr/bin/kelvar-view" --help | sed -n 's/^  [^ ]*\(--[a-z-]*\).*/\1/p'); do
        zgrep -q -- "^.B .*${option//-/\\\\-}" "$1/usr/share/man/man1/kelvar-view.1.gz" || {
            echo "the manual does not tell $option" >&2
            return 1
        }
    done
}

# run_thumbnailer FOLDER MODEL PICTURE: what a file manager does by the entry of the package unpacked there.
run_thumbnailer() {
    local words
    read -r -a words < <(sed -n 's/^Exec=//p' "$1/usr/share/thumbnailers/kelvar-view.thumbnailer")
    words=("${words[@]/\%i/"$2"}")
    words=("${words[@]/\%o/"$3"}")
    words=("${words[@]/\%s/256}")
    PATH=$1/usr/bin:$PATH "${words[@]}"
}

# thumbnail FOLDER CHECK WORK MODEL COLOUR...: a model gets its picture, and nothing else is left.
thumbnail() {
    rm -rf "$3"
    mkdir "$3"
    cp "$4" "$3/a model.glb"
    run_thumbnailer "$1" "$3/a model.glb" "$3/a picture"
    [[ $(ls "$3") == "a model.glb"$'\n'"a picture" ]]
    "$2" "$3/a picture" 256x256 "${@:5}"
}

# thumbnail_without_display ...: the same where nobody has brought a display.
thumbnail_without_display() {
    unset DISPLAY
    thumbnail "$@"
}

# no_thumbnail FOLDER WORK MODEL STATUS WORDS: no picture comes of it, and nothing is left.
no_thumbnail() {
    local said code=0
    rm -rf "$2"
    mkdir "$2"
    said=$(run_thumbnailer "$1" "$3" "$2/picture" 2>&1) || code=$?
    echo "$code: $said"
    [[ $code == "$4" && $said == *"$5"* && -z $(ls -A "$2") ]]
}

# damaged FOLDER WORK MODEL: a model that is cut off; a picture that was there stays.
damaged() {
    head -c 5000 "$3" >"$2.glb"
    no_thumbnail "$1" "$2" "$2.glb" 2 damaged
    echo kept >"$2/picture"
    if run_thumbnailer "$1" "$2.glb" "$2/picture"; then
        return 1
    fi
    [[ $(ls -A "$2") == picture && $(cat "$2/picture") == kept ]]
}

# large FOLDER WORK: a model that takes more memory than there is to it, in a file that takes little.
large() {
    local triangles=12000000
    {
        head -c 80 /dev/zero
        # shellcheck disable=SC2059 # four bytes, the lowest first
        printf "$(printf '\\x%02x\\x%02x\\x%02x\\x%02x' $((triangles & 255)) $((triangles >> 8 & 255)) \
            $((triangles >> 16 & 255)) $((triangles >> 24)))"
    } >"$2.stl"
    truncate -s $((84 + 50 * triangles)) "$2.stl"
    no_thumbnail "$1" "$2" "$2.stl" 2 "more memory than 512.0 MiB"
    rm "$2.stl"
}

# slow FOLDER WORK MODEL: a reader that does not come to an end, and is not left behind. Like the true one it goes with
# its viewer, however that ends.
slow() {
    local reader
    rm -rf "$2.package"
    cp -r "$1" "$2.package"
    reader=$(echo "$2.package"/usr/libexec/*/model_reader)
    printf '#!/bin/sh\necho $$ >>%q\nexec setpriv --pdeathsig KILL sleep 100\n' "$2.readers" >"$reader"
    rm -f "$2.readers"
    no_thumbnail "$2.package" "$2" "$3" 124 ""
    [[ -s $2.readers ]]
    ! xargs ps -o stat= <"$2.readers" | grep -v Z
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
