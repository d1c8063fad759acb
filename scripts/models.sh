#!/usr/bin/env bash
# Draws the files of scripts/models.txt with the viewer and with f3d: scripts/models.sh. Writes what came of them
# into docs/models.md, between its marks, and the viewer's pictures into docs/models.jpg.
set -euo pipefail

source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

width=480
height=360

# shows_something PICTURE: whether there is more in it than a background.
shows_something() {
    [ -f "$1" ] && [ "$(convert "$1" -alpha off -colorspace gray -edge 1 -format '%[fx:maxima>0.03]' info:)" = 1 ]
}

# measure LOG COMMAND...: runs it for a minute at most. Prints its seconds of processor time and its exit code.
measure() {
    local log=$1 code=0
    shift
    TIMEFORMAT='%U %S'
    { time timeout 60 "$@" >"$log" 2>&1; } 2>"$work/time" || code=$?
    awk -v code="$code" 'END { printf "%.2f\t%d\n", $1 + $2, code }' "$work/time"
}

# What the viewer said of the file $1: one line, without the paths.
told() {
    sed -n "s|^view: ||p" "$work/log" | sed "s|$models/$1: ||; s|$models/||g" | paste -sd';' | sed 's/;/; /g'
}

# result PICTURE CODE WORDS: what came of a file, for the table.
result() {
    if shows_something "$1"; then
        echo "drawn${3:+: $3}"
    else
        [ "$2" -lt 124 ] && echo "${3:-nothing}" || echo "taken down"
    fi
}

draw_all() {
    local number=0 line file picture seconds code row
    while IFS= read -r line; do
        file=${line%% | *}
        number=$((number + 1))
        picture=$work/$(printf '%03d' "$number")
        read -r seconds code < <(measure "$work/log" "$build/bin/kelvar-view" "$models/$file" --out "$picture.png" \
            --size "${width}x$height" --position iso --no-triad)
        row="$number | $file | ${line#* | } | $(result "$picture.png" "$code" "$(told "$file")") | $seconds"
        read -r seconds code < <(measure "$work/log" f3d "$models/$file" --output "$picture.f3d.png" \
            --resolution "$width,$height" --quiet)
        echo "| $row | $(result "$picture.f3d.png" "$code" "") | $seconds |" | tee -a "$work/rows" >&2
        [ -f "$picture.png" ] || convert -size "${width}x$height" xc:'#4a3030' "$picture.png"
    done < <(grep -v '^#' "$root/scripts/models.txt")
}

write_table() {
    local page=$root/docs/models.md
    {
        sed '/<!-- table -->/q' "$page"
        echo "| | file | what it holds | viewer | s | f3d | s |"
        echo "|---|---|---|---|---|---|---|"
        cat "$work/rows"
        sed -n '/<!-- end -->/,$p' "$page"
    } >"$work/page"
    mv "$work/page" "$page"
}

write_sheet() {
    montage "$work"/[0-9][0-9][0-9].png -tile 12x -geometry 160x120+1+1 -quality 85 "$root/docs/models.jpg"
}

if [ "${1:-}" != --inside ]; then
    install_packages "$root/scripts/packages.txt" "$root/scripts/packages-models.txt"
    configure
    build_targets viewer
    with_virtual_display "${BASH_SOURCE[0]}" --inside
    exit
fi
models=$(dpkg -L assimp-testmodels | sed -n 's|/OBJ$||p')
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
draw_all
write_table
write_sheet
