#!/usr/bin/env bash
# Batch conversion of one million decimal positions, file in and file out, by
# kvtool and by the programs geodesists use for it: GeographicLib's GeoConvert
# and PROJ's cs2cs, side by side on the same file.
#   bench/bench_kvtool.sh [path/to/kvtool] [lines]
# Uses hyperfine when installed (median wall time and mean CPU time of five
# runs), else one /usr/bin/time run each. cs2cs cannot choose the UTM zone per position nor write MGRS: it is
# given one fixed zone, which is less work than the others do.
set -euo pipefail
kvtool=${1:-build/tools/kvtool}
lines=${2:-1000000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Latitudes from 80°S to 84°N, where all three write UTM rather than UPS.
awk -v n="$lines" 'BEGIN { srand(20240501); for (i = 0; i < n; i++)
    printf "%.6f %.6f\n", -80 + rand() * 164, -180 + rand() * 360 }' > "$work/positions.txt"

names=(
    "kvtool decimal->UTM"
    "GeoConvert decimal->UTM"
    "cs2cs decimal->UTM (one zone)"
    "kvtool decimal->MGRS"
    "GeoConvert decimal->MGRS"
)
commands=(
    "$kvtool coord --to utm --input $work/positions.txt > $work/out.txt 2>/dev/null"
    "GeoConvert -u < $work/positions.txt > $work/out.txt"
    "cs2cs -r -f %.0f +proj=longlat +datum=WGS84 +to +proj=utm +zone=33 +datum=WGS84 < $work/positions.txt > $work/out.txt 2>/dev/null"
    "$kvtool coord --to mgrs --input $work/positions.txt > $work/out.txt 2>/dev/null"
    "GeoConvert -m -p 0 < $work/positions.txt > $work/out.txt"
)

echo "$lines positions, $(nproc) cores, one process at a time"
if command -v hyperfine > /dev/null; then
    args=()
    for i in "${!names[@]}"; do args+=(-n "${names[$i]}" "${commands[$i]}"); done
    hyperfine --style basic --warmup 1 --runs 5 --export-json "$work/result.json" "${args[@]}" > /dev/null
    python3 - "$work/result.json" "$lines" <<'PY'
import json, sys
results = json.load(open(sys.argv[1]))["results"]
lines = int(sys.argv[2])
# CPU time (user + system) is what one core spends; wall time also counts the
# waits of a machine shared with other work.
print(f"{'program':32} {'wall s':>7} {'CPU s':>7} {'positions/s (CPU)':>18}")
for r in results:
    cpu = r["user"] + r["system"]
    print(f"{r['command']:32} {r['median']:7.3f} {cpu:7.3f} {lines / cpu:18,.0f}")
PY
else
    for i in "${!names[@]}"; do
        times=$( { /usr/bin/time -f "%e %U %S" bash -c "${commands[$i]}"; } 2>&1 | tail -1)
        awk -v name="${names[$i]}" -v n="$lines" -v t="$times" \
            'BEGIN { split(t, a, " "); cpu = a[2] + a[3]; printf "%-32s %7.3f %7.3f %18.0f\n", name, a[1], cpu, n / cpu }'
    done
fi
