#!/bin/sh
# Capturing the same 1000 x 700 window: Talvo's CGWindowListCreateImageFromArray
# (WindowCaptureBench, bare and with the drawn shadow) against xwd -id (and
# ImageMagick's import -window when installed), in the same run on the same X
# server. Each peer's start-up is timed on a 1 x 1 window and subtracted.
# usage: bench/compare-capture.sh build-release/bench/WindowCaptureBench
set -eu
bench=$1
runs=${RUNS:-21}

if [ -z "${DISPLAY:-}" ]; then
  exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi
command -v xwd >/dev/null || { echo "compare-capture: xwd missing (tools/install-deps --bench)" >&2; exit 1; }

work=$(mktemp -d "${TMPDIR:-/tmp}/talvo-capture.XXXXXX")
holder=""
cleanup() {
  # A GNUstep process that pumps events ignores SIGTERM.
  if [ -n "$holder" ]; then kill -KILL "$holder" 2>/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT INT

"$bench" --hold_windows >"$work/ids" 2>/dev/null &
holder=$!
for _ in $(seq 50); do
  [ -s "$work/ids" ] && break
  sleep 0.1
done
read -r big tiny <"$work/ids"

# The fastest wall time of a command over the runs, in milliseconds: on a
# shared machine the least disturbed run, the peer's best case.
best_ms() {
  for _ in $(seq "$runs"); do
    start=$(date +%s%N)
    "$@" >/dev/null 2>&1
    end=$(date +%s%N)
    echo $(( (end - start) / 1000 ))
  done | sort -n | awk 'NR == 1 { printf "%.3f\n", $1 / 1000 }'
}

xwd_big=$(best_ms xwd -silent -id "$big" -out "$work/big.xwd")
xwd_tiny=$(best_ms xwd -silent -id "$tiny" -out "$work/tiny.xwd")
import_big=""
if command -v import >/dev/null; then
  import_big=$(best_ms import -silent -window "$big" "rgba:$work/big.rgba")
  import_tiny=$(best_ms import -silent -window "$tiny" "rgba:$work/tiny.rgba")
fi
kill -KILL "$holder" 2>/dev/null || true
wait "$holder" 2>/dev/null || true
holder=""

"$bench" --benchmark_format=json --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true >"$work/talvo.json" 2>/dev/null

python3 - "$work/talvo.json" "$xwd_big" "$xwd_tiny" "$import_big" "${import_tiny:-}" <<'PY'
import json, sys
results = json.load(open(sys.argv[1]))["benchmarks"]
def median(name):
    for r in results:
        if r["name"] == name + "_median":
            return r["real_time"] if r["time_unit"] == "ms" else r["real_time"] / 1e6
    raise SystemExit("no result for " + name)
bare, margin, shadow = median("BM_CaptureBare"), median("BM_CaptureInMargin"), median("BM_CaptureWithShadow")
xwd = float(sys.argv[2]) - float(sys.argv[3])
print("1000x700 window capture (ms; Talvo: median of 5 repetitions, peers: best of the runs)")
print(f"  Talvo bare                  {bare:8.3f}")
print(f"  Talvo in a shadow margin    {margin:8.3f}")
print(f"  Talvo with drawn shadow     {shadow:8.3f}")
print(f"  xwd -id (start-up {float(sys.argv[3]):.2f} ms off) {xwd:8.3f}   "
      f"Talvo {xwd / bare:.1f}x faster bare, {xwd / shadow:.1f}x with shadow")
if sys.argv[4]:
    imp = float(sys.argv[4]) - float(sys.argv[5])
    print(f"  import -window (start-up {float(sys.argv[5]):.2f} ms off) {imp:8.3f}   "
          f"Talvo {imp / bare:.1f}x faster bare, {imp / shadow:.1f}x with shadow")
PY
