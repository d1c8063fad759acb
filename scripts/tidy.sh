#!/usr/bin/env bash
# tidy.sh BUILD: clang-tidy over the libraries and the hosts as the build folder compiles them. Looks only at
# sources that changed since they were last found clean, themselves, a header that they include or the checks.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(cd "$1" && pwd)
stamps=$build/tidy
mkdir -p "$stamps"

# One line a source: the source, then all that it includes from this project.
dependencies() {
    ninja -C "$build" -t deps | awk -v root="$root/" -v build="$build/" '
        /^[^ ].*: #deps/ { if (line) print line; line = ""; next }
        /^ / {
            file = $1
            if (file !~ /^\//) file = build file
            while (sub(/[^\/]+\/\.\.\//, "", file)) {}
            if (index(file, root) == 1) line = line " " file
        }
        END { if (line) print line }'
}

# check SOURCE: its stamp is made when nothing was found.
check() {
    local stamp=$stamps/${1//\//_}
    if clang-tidy-14 -p "$build" --quiet "$1" 2>"$stamp.log"; then
        touch "$stamp"
        rm "$stamp.log"
    else
        cat "$stamp.log" >&2
        return 1
    fi
}
export -f check
export build stamps

# due SOURCE DEPENDENCY...
due() {
    local stamp=$stamps/${1//\//_}
    [ ! -e "$stamp" ] || [ -n "$(find "$@" "$root/.clang-tidy" -newer "$stamp" -print -quit)" ]
}

dependencies | sort -u | while read -r -a files; do
    case "${files[0]}" in
    "$root"/Framework/*.cpp | "$root"/hosts/*.cpp)
        if due "${files[@]}"; then printf '%s\0' "${files[0]}"; fi
        ;;
    esac
done | xargs -0 -r -n 1 -P "$(nproc)" bash -c 'check "$1"' check
