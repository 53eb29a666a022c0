#!/usr/bin/env bash
# Runs the fuzzing programs from their seeds and what earlier runs have found to be of interest.
# Prints a line for each. Inputs that fail are kept in build/fuzz/failed.
# usage: scripts/fuzz.sh [SECONDS] [TARGET...]
# FUZZ_BUILD names a build folder that is there already; else the preset is built. FUZZ_JOBS is how
# many run at a time, 2 unless given.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=600
if [[ ${1:-} =~ ^[0-9]+$ ]]; then
    seconds=$1
    shift
fi
targets=("$@")
if [[ ${#targets[@]} -eq 0 ]]; then
    for source in fuzz/*.cpp; do targets+=("$(basename "$source" .cpp)"); done
fi

build=${FUZZ_BUILD:-build/fuzz}
if [[ -z ${FUZZ_BUILD:-} ]]; then cmake --preset fuzz >/dev/null; fi
cmake --build "$build" --target "${targets[@]/#/fuzz_}"

project=$PWD
build=$(cd "$build" && pwd)
work=$project/build/fuzz
mkdir -p "$work/failed"
# Every input may write a file, so they are in memory where that is possible.
TMPDIR=$(mktemp -d -p "$([[ -w /dev/shm ]] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
trap 'rm -rf "$TMPDIR"' EXIT

longest_input() {
    case $1 in
    command_line) echo 128 ;;
    basic_tokens | expression | keyboard | monitor | settings) echo 512 ;;
    *) echo 4096 ;;
    esac
}

fuzz_one() {
    local target=$1 corpus=$work/corpus/$1 log=$work/$1.log result=passed folder
    local folders=("$corpus")
    mkdir -p "$corpus"
    for folder in seeds found; do
        folder=$project/fuzz/$folder/$target
        if [[ -d $folder ]]; then folders+=("$folder"); fi
    done
    "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len="$(longest_input "$target")" \
        -timeout=10 -rss_limit_mb=2048 -close_fd_mask=3 -print_final_stats=1 \
        -artifact_prefix="$work/failed/$target-" "${folders[@]}" >"$log" 2>&1 || result=FAILED
    local runs rate coverage
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
    coverage=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -1)
    printf '%-14s %10s runs %6s edges %6s/s  %s' "$target" "${runs:-?}" "${coverage:-?}" \
        "${rate:-?}" "$result"
    if [[ $result == FAILED ]]; then
        sed -n 's/^.*Test unit written to/:/p' "$log" | tr -d '\n'
    fi
    echo
    [[ $result == passed ]]
}
export -f fuzz_one longest_input
export project build work seconds TMPDIR

printf '%s\n' "${targets[@]}" | xargs -P"${FUZZ_JOBS:-2}" -I{} bash -c 'fuzz_one {}'
