#!/usr/bin/env bash
# Runs every libFuzzer target of a build for the given number of seconds on
# its committed corpus and regression inputs (with its dictionary and its
# fuzz/<target>.options, if any), as many targets at a time as there are
# cores (KVBASE_FUZZ_JOBS overrides).
# New inputs go to <build>/fuzz-corpus/<target>, findings to
# <build>/fuzz-artifacts/; any finding fails the run.
#   fuzz/run.sh <build dir> <seconds per target> [target...]
set -uo pipefail
cd "$(dirname "$0")/.."
build_dir=$1
seconds=$2
shift 2
only=" $* "
jobs=${KVBASE_FUZZ_JOBS:-$(nproc)}

run_one() {
    local fuzzer=$1 name=$2
    local work="$build_dir/fuzz-corpus/$name"
    local artifacts="$build_dir/fuzz-artifacts"
    mkdir -p "$work" "$artifacts"
    local args=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=3072 -print_final_stats=1
        -artifact_prefix="$artifacts/$name-")
    [ -f "fuzz/$name.dict" ] && args+=(-dict="fuzz/$name.dict")
    # Further libFuzzer flags of a target, one a line.
    [ -f "fuzz/$name.options" ] && mapfile -t -O ${#args[@]} args <"fuzz/$name.options"
    local inputs=("$work" "fuzz/corpus/$name")
    [ -d "fuzz/regressions/$name" ] && inputs+=("fuzz/regressions/$name")
    TZ=UTC TMPDIR="$work" "$fuzzer" "${args[@]}" "${inputs[@]}" >"$build_dir/fuzz-$name.log" 2>&1
    echo $? >"$build_dir/fuzz-$name.rc"
}

names=()
for fuzzer in "$build_dir"/fuzz/fuzz_*; do
    [ -f "$fuzzer" ] && [ -x "$fuzzer" ] || continue
    name=${fuzzer##*/fuzz_}
    [ $# -eq 0 ] || [[ "$only" == *" $name "* ]] || continue
    names+=("$name")
    while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n; done
    run_one "$fuzzer" "$name" &
done
wait

failed=()
for name in ${names[@]+"${names[@]}"}; do
    log="$build_dir/fuzz-$name.log"
    rc=$(cat "$build_dir/fuzz-$name.rc" 2>/dev/null || echo 1)
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    cov=$(grep -o 'cov: [0-9]*' "$log" | tail -1)
    ft=$(grep -o 'ft: [0-9]*' "$log" | tail -1)
    echo "fuzz_$name: ${seconds}s, ${runs:-?} runs, ${cov:-cov: ?}, ${ft:-ft: ?}, exit $rc"
    if [ "$rc" -ne 0 ]; then
        failed+=("$name")
        grep -E 'ERROR|SUMMARY|runtime error|deadly|Test unit written' "$log" | head -20
    fi
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz findings in: ${failed[*]} (see $build_dir/fuzz-*.log and $build_dir/fuzz-artifacts/)" >&2
    exit 1
fi
