#!/usr/bin/env bash
# Compares the scanner with `du -s` on the same home-shaped tree, warm cache, in the same run.
# Usage: bench/compare-with-du.sh BUILD_DIR [TREE] [ROUNDS]
#   BUILD_DIR  a build tree holding bench/nubo-scan-bench (e.g. build/test)
#   TREE       generated once if missing (default /tmp/nubo-home-tree)
# Prints per round the wall times (du's process, the scan's own) and their ratio, and the CPU
# times (user + system) of both processes and their ratio; then the medians.
set -euo pipefail
build=${1:?usage: compare-with-du.sh BUILD_DIR [TREE] [ROUNDS]}
tree=${2:-/tmp/nubo-home-tree}
rounds=${3:-5}
here=$(cd "$(dirname "$0")" && pwd)
bench="$build/bench/nubo-scan-bench"

if [ ! -d "$tree" ]; then
    echo "generating $tree (once)…"
    python3 "$here/make-home-tree.py" "$tree"
fi

# Warm the cache with one pass of each.
du -s "$tree" >/dev/null
"$bench" "$tree" >/dev/null

TIMEFORMAT='%R %U %S'
wall_ratios=()
cpu_ratios=()
for round in $(seq "$rounds"); do
    read -r du_wall du_user du_sys < <({ time du -s "$tree" >/dev/null; } 2>&1)
    times=$({ time "$bench" "$tree" >/tmp/nubo-scan-bench.out; } 2>&1)
    read -r _ scan_user scan_sys <<<"$times"
    line=$(tail -1 /tmp/nubo-scan-bench.out)
    scan_wall=${line##*seconds=}
    wall_ratio=$(echo "scale=3; $scan_wall / $du_wall" | bc)
    cpu_ratio=$(echo "scale=3; ($scan_user + $scan_sys) / ($du_user + $du_sys)" | bc)
    wall_ratios+=("$wall_ratio")
    cpu_ratios+=("$cpu_ratio")
    echo "round $round: wall du=${du_wall}s scan=${scan_wall}s ratio=$wall_ratio;" \
         "cpu du=$(echo "$du_user + $du_sys" | bc)s scan=$(echo "$scan_user + $scan_sys" | bc)s ratio=$cpu_ratio"
done
median() { printf '%s\n' "$@" | sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
echo "median wall ratio $(median "${wall_ratios[@]}"), median cpu ratio $(median "${cpu_ratios[@]}")"
head -2 /tmp/nubo-scan-bench.out
tail -1 /tmp/nubo-scan-bench.out
echo "load: $(cut -d' ' -f1-3 /proc/loadavg)"
