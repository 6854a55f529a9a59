#!/usr/bin/env bash
# Compares the scanner with `du -s` on the same home-shaped tree, warm cache, in the same run.
# Usage: bench/compare-with-du.sh BUILD_DIR [TREE] [ROUNDS]
#   BUILD_DIR  a build tree holding bench/nubo-scan-bench (e.g. build/test)
#   TREE       generated once if missing (default /tmp/nubo-home-tree)
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

now() { date +%s.%N; }
for round in $(seq "$rounds"); do
    start=$(now); du -s "$tree" >/dev/null; end=$(now)
    du_seconds=$(echo "$end - $start" | bc)
    line=$("$bench" "$tree" | tail -1)
    start=$(now); "$bench" "$tree" >/dev/null; end=$(now)
    scan_wall=$(echo "$end - $start" | bc)
    scan_seconds=${line##*seconds=}
    ratio=$(echo "scale=3; $scan_seconds / $du_seconds" | bc)
    echo "round $round: du=${du_seconds}s scan=${scan_seconds}s (process ${scan_wall}s) ratio=$ratio  [$line]"
done
"$bench" "$tree" | head -2
