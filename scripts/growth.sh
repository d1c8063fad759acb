#!/usr/bin/env bash
# Measures how frames, hover and changes grow from 1 to 100,000 parts, and plots it: scripts/growth.sh.
# Writes docs/growth.svg. The figures are those of ./bench growth.
set -euo pipefail

source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_packages "$root/scripts/packages.txt" "$root/scripts/packages-growth.txt"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$root/bench" growth | tee "$work/figures"

# rows FIGURE: number of parts and value of each line "growth, N parts: FIGURE".
rows() {
    awk -F '\t' -v figure="$1" '
        match($1, /^growth, [0-9]+ parts: /) && substr($1, RLENGTH + 1) == figure {
            split($1, words, " ")
            print words[2], $2
        }' "$work/figures"
}

rows "frame, bare" >"$work/bare"
rows "frame" >"$work/frame"
rows "mouseMove with hover, beyond the clear, calling thread" >"$work/hover"
rows "hide or show one, to the next frame's start, calling thread" >"$work/change"

gnuplot <<PLOT
set terminal svg size 960,420 font "DejaVu Sans,13" background "white"
set output "$root/docs/growth.svg"
set multiplot layout 1,2
set logscale xy
set xlabel "parts of 20 triangles"
set ylabel "ms"
set format xy "10^{%L}"
set grid back linecolor "#dddddd"
set key top left
set xrange [0.8:150000]
set style data linespoints
set title "a frame"
plot "$work/bare" title "object by object" linecolor "#888888" pointtype 7 pointsize 0.6, \
     "$work/frame" title "the library" linecolor "#0072bd" pointtype 7 pointsize 0.6
set title "what the library adds, calling thread"
set yrange [0.001:1]
plot "$work/hover" title "hover, beyond the clear" linecolor "#d95319" pointtype 7 pointsize 0.6, \
     "$work/change" title "hide one, to the next frame" linecolor "#77ac30" pointtype 7 pointsize 0.6
unset multiplot
PLOT
