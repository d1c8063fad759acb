#!/usr/bin/env bash
# Builds the fuzzing programs and runs each for a while: scripts/fuzz.sh [seconds each, 60 if not given].
# Fails at the first find and says where the text is that shows it; ./test --full runs this.
set -euo pipefail

source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
seconds=${1:-60}
use_preset fuzz

install_packages "$root/scripts/packages.txt" "$root/scripts/packages-fuzz.txt"
configure
build_targets fuzz/all

# Saving waits for the disk; in memory there is no disk to wait for.
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm
export LSAN_OPTIONS=print_suppressions=0
for program in "$build"/bin/fuzz_*; do
    name=${program##*/fuzz_}
    seeds=$root/fuzz/seeds
    mkdir -p "$build/corpus/$name" "$build/finds"
    echo "fuzzing $name for $seconds seconds" >&2
    "$program" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=3000 -print_final_stats=1 \
        -dict="$seeds/$name.dict" -artifact_prefix="$build/finds/$name-" \
        "$build/corpus/$name" "$seeds/$name" >"$build/finds/$name.log" 2>&1 || {
        tail -n 60 "$build/finds/$name.log" >&2
        exit 1
    }
    sed -n 's/^stat::number_of_executed_units: */texts tried: /p' "$build/finds/$name.log" >&2
done
