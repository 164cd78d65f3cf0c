#!/usr/bin/env bash
# Sets up a Debian 12 machine (as root) and builds KvBase.
#   ./setup.sh run     build and start kvtool (further arguments go to it)
#   ./setup.sh test    build and run every test through CTest
#   ./setup.sh bench   build and run the benchmarks (with the peer libraries) and print
#                      the table of medians and ratios, also written into README.md
set -euo pipefail
cd "$(dirname "$0")"

mode=${1:-run}
shift || true
build_dir=${KVBASE_BUILD_DIR:-build}

packages=(g++ cmake make qtbase5-dev libboost-dev libssl-dev)
cmake_args=()
case "$mode" in
    run) ;;
    test) packages+=(python3-jwt python3-cryptography) ;;
    bench)
        packages+=(libbenchmark-dev libproj-dev libjwt-dev libgeographiclib-dev pkg-config hyperfine geographiclib-tools proj-bin python3)
        cmake_args+=(-DKVBASE_BUILD_BENCHMARKS=ON)
        build_dir=${KVBASE_BUILD_DIR:-build-bench}
        ;;
    *)
        echo "usage: $0 run|test|bench" >&2
        exit 2
        ;;
esac

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${cmake_args[@]}"
cmake --build "$build_dir" --parallel "$(nproc)"

case "$mode" in
    run) "$build_dir/tools/kvtool" "$@" ;;
    test) ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)" "$@" ;;
    bench)
        # One table of medians with ratios to the peers, also written into README.md;
        # then kvtool's batch run against GeoConvert and cs2cs.
        python3 bench/bench_table.py --build-dir "$build_dir" --readme README.md "$@"
        bench/bench_kvtool.sh "$build_dir/tools/kvtool"
        ;;
esac
