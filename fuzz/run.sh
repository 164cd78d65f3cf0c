#!/usr/bin/env bash
# Runs every libFuzzer target of a build for the given number of seconds on
# its committed corpus and regression inputs (with its dictionary and its
# fuzz/<target>.options, if any).
# New inputs go to <build>/fuzz-corpus/<target>, findings to
# <build>/fuzz-artifacts/; any finding fails the run.
#   fuzz/run.sh <build dir> <seconds per target> [target...]
set -uo pipefail
cd "$(dirname "$0")/.."
build_dir=$1
seconds=$2
shift 2
only=" $* "
failed=()
for fuzzer in "$build_dir"/fuzz/fuzz_*; do
    [ -f "$fuzzer" ] && [ -x "$fuzzer" ] || continue
    name=${fuzzer##*/fuzz_}
    [ $# -eq 0 ] || [[ "$only" == *" $name "* ]] || continue
    work="$build_dir/fuzz-corpus/$name"
    artifacts="$build_dir/fuzz-artifacts"
    mkdir -p "$work" "$artifacts"
    args=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=3072 -print_final_stats=1
        -artifact_prefix="$artifacts/$name-")
    [ -f "fuzz/$name.dict" ] && args+=(-dict="fuzz/$name.dict")
    # Further libFuzzer flags of a target, one a line.
    [ -f "fuzz/$name.options" ] && mapfile -t -O ${#args[@]} args <"fuzz/$name.options"
    inputs=("$work" "fuzz/corpus/$name")
    [ -d "fuzz/regressions/$name" ] && inputs+=("fuzz/regressions/$name")
    log="$build_dir/fuzz-$name.log"
    TZ=UTC TMPDIR="$work" "$fuzzer" "${args[@]}" "${inputs[@]}" >"$log" 2>&1
    rc=$?
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    cov=$(grep -o 'cov: [0-9]*' "$log" | tail -1)
    echo "fuzz_$name: ${seconds}s, ${runs:-?} runs, ${cov:-cov: ?}, exit $rc"
    if [ "$rc" -ne 0 ]; then
        failed+=("$name")
        grep -E 'ERROR|SUMMARY|runtime error|deadly|Test unit written' "$log" | head -20
    fi
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz findings in: ${failed[*]} (see $build_dir/fuzz-*.log and $build_dir/fuzz-artifacts/)" >&2
    exit 1
fi
