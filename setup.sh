#!/usr/bin/env bash
# Sets up a Debian 12 machine (as root) and builds KvBase.
#   ./setup.sh run      build and start kvtool, further arguments go to it (Qt 5; KVBASE_QT=6 for Qt 6)
#   ./setup.sh test     build against Qt 5 and Qt 6 and run every test of both through CTest
#   ./setup.sh bench    build and run the benchmarks (with the peer libraries), print the
#                       table of medians and ratios and write it into README.md
#   ./setup.sh package  build the Debian packages of both Qt versions into packages/
#   ./setup.sh docs     build the API reference into build/docs/html
#   ./setup.sh asan     build with AddressSanitizer + UBSan (clang) and run every test
#   ./setup.sh tsan     build with ThreadSanitizer (clang) and run the threaded tests
#   ./setup.sh fuzz [seconds]   build the libFuzzer targets (in the asan build) and
#                       run each on its corpus for that long (default 60), one per core
# KVBASE_QT=5 or 6 limits test and package to one Qt version and picks the one
# for the other modes; KVBASE_BUILD_DIR names the build directory (default
# "build"; the Qt 6 build goes to "<dir>-qt6").
set -euo pipefail
cd "$(dirname "$0")"

mode=${1:-run}
shift || true
build_base=${KVBASE_BUILD_DIR:-build}

case "${KVBASE_QT:-}" in
    5) qt_versions=(5) ;;
    6) qt_versions=(6) ;;
    "")
        case "$mode" in
            test | package) qt_versions=(5 6) ;;
            *) qt_versions=(5) ;;
        esac
        ;;
    *)
        echo "KVBASE_QT must be 5 or 6" >&2
        exit 2
        ;;
esac

packages=(g++ cmake make libboost-dev libssl-dev qtbase5-dev qt6-base-dev)
cmake_args=()
case "$mode" in
    run) ;;
    test) packages+=(pkg-config dpkg-dev file doxygen python3-jwt python3-cryptography) ;;
    bench)
        packages+=(libbenchmark-dev libproj-dev libjwt-dev libgeographiclib-dev pkg-config hyperfine geographiclib-tools proj-bin python3)
        cmake_args+=(-DKVBASE_BUILD_BENCHMARKS=ON)
        build_base=${KVBASE_BUILD_DIR:-build-bench}
        ;;
    package)
        packages+=(dpkg-dev file)
        # Installed under /usr so the library lands in Debian's multiarch
        # directory; only the library is built.
        cmake_args+=(-DCMAKE_INSTALL_PREFIX=/usr -DBUILD_TESTING=OFF -DKVBASE_BUILD_EXAMPLES=OFF
            -DKVBASE_BUILD_TOOLS=OFF)
        build_base=${KVBASE_BUILD_DIR:-build-package}
        ;;
    docs) packages+=(doxygen) ;;
    asan | fuzz)
        # One instrumented build serves both: the whole suite under ASan + UBSan
        # and the libFuzzer targets (the library carries coverage for them).
        packages+=(clang libclang-rt-14-dev python3-jwt python3-cryptography)
        cmake_args+=(-DCMAKE_CXX_COMPILER=clang++ -DKVBASE_SANITIZE_ADDRESS=ON -DKVBASE_BUILD_FUZZERS=ON)
        build_base=${KVBASE_BUILD_DIR:-build-asan}
        ;;
    tsan)
        packages+=(clang libclang-rt-14-dev)
        cmake_args+=(-DCMAKE_CXX_COMPILER=clang++ -DKVBASE_SANITIZE_THREAD=ON)
        build_base=${KVBASE_BUILD_DIR:-build-tsan}
        ;;
    *)
        echo "usage: $0 run|test|bench|package|docs|asan|tsan|fuzz" >&2
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

build_dir_for() {
    if [ "$1" = 5 ]; then echo "$build_base"; else echo "$build_base-qt$1"; fi
}

kvtool_for() {
    if [ "$1" = 5 ]; then echo "$(build_dir_for 5)/tools/kvtool"; else echo "$(build_dir_for "$1")/tools/kvtool-qt$1"; fi
}

configure() {
    cmake -S . -B "$(build_dir_for "$1")" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKVBASE_QT_MAJOR_VERSION="$1" \
        ${cmake_args[@]+"${cmake_args[@]}"}
}

build() {
    configure "$1"
    cmake --build "$(build_dir_for "$1")" --parallel "$(nproc)"
}

case "$mode" in
    run)
        build "${qt_versions[0]}"
        "$(kvtool_for "${qt_versions[0]}")" "$@"
        ;;
    test)
        for v in "${qt_versions[@]}"; do
            echo "=== Qt $v ==="
            build "$v"
            ctest --test-dir "$(build_dir_for "$v")" --output-on-failure --parallel "$(nproc)" "$@"
        done
        if [ ${#qt_versions[@]} -eq 2 ]; then
            # Both builds must install side by side into one prefix.
            scratch=$(mktemp -d)
            for v in 5 6; do
                cmake --install "$(build_dir_for "$v")" --prefix "$scratch/qt$v" >/dev/null
                (cd "$scratch/qt$v" && find . ! -type d | sort) >"$scratch/files$v"
            done
            clashes=$(comm -12 "$scratch/files5" "$scratch/files6")
            rm -rf "$scratch"
            if [ -n "$clashes" ]; then
                echo "the Qt 5 and Qt 6 installs share files:" >&2
                echo "$clashes" >&2
                exit 1
            fi
            echo "Qt 5 and Qt 6 installs have no file in common"
        fi
        ;;
    bench)
        build "${qt_versions[0]}"
        # One table of medians with ratios to the peers, also written into README.md;
        # then kvtool's batch run against GeoConvert and cs2cs.
        python3 bench/bench_table.py --build-dir "$(build_dir_for "${qt_versions[0]}")" --readme README.md "$@"
        bench/bench_kvtool.sh "$(kvtool_for "${qt_versions[0]}")"
        ;;
    package)
        packages_dir="$PWD/packages"
        for v in "${qt_versions[@]}"; do
            build "$v"
            cpack -G DEB --config "$(build_dir_for "$v")/CPackConfig.cmake" -B "$packages_dir"
        done
        rm -rf "$packages_dir/_CPack_Packages"
        ls -l "$packages_dir"/*.deb
        ;;
    docs)
        configure "${qt_versions[0]}"
        cmake --build "$(build_dir_for "${qt_versions[0]}")" --target docs
        echo "API reference: $(build_dir_for "${qt_versions[0]}")/docs/html/index.html"
        ;;
    # The tests carry their sanitizer options (see the root CMakeLists.txt).
    asan)
        build "${qt_versions[0]}"
        ctest --test-dir "$(build_dir_for "${qt_versions[0]}")" --output-on-failure --parallel "$(nproc)" "$@"
        ;;
    tsan)
        build "${qt_versions[0]}"
        ctest --test-dir "$(build_dir_for "${qt_versions[0]}")" --output-on-failure -L threads "$@"
        ;;
    fuzz)
        build "${qt_versions[0]}"
        fuzz/run.sh "$(build_dir_for "${qt_versions[0]}")" "${1:-60}"
        ;;
esac
