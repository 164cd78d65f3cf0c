#!/usr/bin/env bash
# Sets up a Debian 12 machine (as root) and builds KvBase.
#   ./setup.sh run     build and start kvtool (further arguments go to it)
#   ./setup.sh test    build and run every test through CTest
#   ./setup.sh bench   build and run the benchmarks (with the peer libraries)
#   ./setup.sh asan    build with AddressSanitizer + UBSan (clang) and run every test
#   ./setup.sh tsan    build with ThreadSanitizer (clang) and run the threaded tests
#   ./setup.sh fuzz [seconds]   build the libFuzzer targets and run each on its
#                      corpus for that long (default 60)
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
        packages+=(libbenchmark-dev libproj-dev libjwt-dev libgeographiclib-dev pkg-config hyperfine geographiclib-tools proj-bin)
        cmake_args+=(-DKVBASE_BUILD_BENCHMARKS=ON)
        build_dir=${KVBASE_BUILD_DIR:-build-bench}
        ;;
    asan)
        packages+=(clang libclang-rt-14-dev python3-jwt python3-cryptography)
        cmake_args+=(-DCMAKE_CXX_COMPILER=clang++ -DKVBASE_SANITIZE_ADDRESS=ON)
        build_dir=${KVBASE_BUILD_DIR:-build-asan}
        ;;
    tsan)
        packages+=(clang libclang-rt-14-dev)
        cmake_args+=(-DCMAKE_CXX_COMPILER=clang++ -DKVBASE_SANITIZE_THREAD=ON)
        build_dir=${KVBASE_BUILD_DIR:-build-tsan}
        ;;
    fuzz)
        packages+=(clang libclang-rt-14-dev)
        cmake_args+=(-DCMAKE_CXX_COMPILER=clang++ -DKVBASE_BUILD_FUZZERS=ON -DBUILD_TESTING=OFF
            -DKVBASE_BUILD_EXAMPLES=OFF -DKVBASE_BUILD_TOOLS=OFF)
        build_dir=${KVBASE_BUILD_DIR:-build-fuzz}
        ;;
    *)
        echo "usage: $0 run|test|bench|asan|tsan|fuzz" >&2
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
        for b in "$build_dir"/bench/bench_*; do
            if [ -f "$b" ] && [ -x "$b" ]; then "$b" "$@"; fi
        done
        bench/bench_kvtool.sh "$build_dir/tools/kvtool"
        ;;
    # The tests carry their sanitizer options (see the root CMakeLists.txt).
    asan) ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)" "$@" ;;
    tsan) ctest --test-dir "$build_dir" --output-on-failure -L threads "$@" ;;
    fuzz) fuzz/run.sh "$build_dir" "${1:-60}" ;;
esac
