#!/usr/bin/python3
"""Talvo's layout solver against kiwisolver on the split view of
bench/LayoutSolverBench.cpp (BM_BuildSplit, BM_DragSplit): n views side by
side in a container 100 * n wide, a 1-point divider between neighbours, the
first view pinned to the leading edge and the last to the trailing edge, each
at least 0 wide, top and bottom pinned (both axes built), and one position
constraint per divider at one non-required strength (490 for Talvo):
Vk.left == 100 * k.

Build: every variable and constraint made and added from nothing, then the
values read (updateVariables). Drag: the middle divider moved by one step of
the same back-and-forth walk over 50 points the C++ benchmark takes, then the
values read. kiwisolver is timed from Python, so its figures carry Python's
overhead (making the variables and constraints, calling in); that is how it is
used, and it is counted as it is. For the drag both ways kiwisolver offers are
timed, an edit variable on the dragged view's left edge (the position
constraint of that divider replaced by the edit, at the same strength) and
removing and re-adding the position constraint, and the faster one is
compared.

Usage: bench/compare-kiwi.py [path/to/LayoutSolverBench]
(default build-release/bench/LayoutSolverBench; install kiwisolver with
tools/install-deps --bench). kiwisolver is a Debian package, so this runs
under /usr/bin/python3 whatever python3 comes first on PATH.
"""
import json
import os
import statistics
import subprocess
import sys
import time

SYSTEM_PYTHON = "/usr/bin/python3"
if os.path.realpath(sys.executable) != os.path.realpath(SYSTEM_PYTHON) and os.path.exists(SYSTEM_PYTHON):
    os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON] + sys.argv)

import kiwisolver as kiwi  # noqa: E402

SIZES = (10, 100, 1000)
PITCH = 100.0
HEIGHT = 400.0
DIVIDER = 1.0
POSITION = kiwi.strength.create(0, 490, 0)  # 490 on kiwi's medium scale


def build(n, edit_divider=None):
    """The split view in a fresh solver. With edit_divider, that divider's
    position is held by an edit variable instead of a constraint."""
    solver = kiwi.Solver()
    width, height = kiwi.Variable("container.width"), kiwi.Variable("container.height")
    solver.addConstraint(width == PITCH * n)
    solver.addConstraint(height == HEIGHT)
    left, right, positions = [], [], []
    for k in range(n):
        l, r = kiwi.Variable("left"), kiwi.Variable("right")
        t, b = kiwi.Variable("top"), kiwi.Variable("bottom")
        left.append(l)
        right.append(r)
        solver.addConstraint(l == (0.0 if k == 0 else right[k - 1] + DIVIDER))
        solver.addConstraint(r >= l)
        solver.addConstraint(t == 0.0)
        solver.addConstraint(b == height)
        if k > 0:
            if k == edit_divider:
                solver.addEditVariable(l, POSITION)
                solver.suggestValue(l, PITCH * k)
                positions.append(None)
            else:
                c = (l == PITCH * k) | POSITION
                solver.addConstraint(c)
                positions.append(c)
    solver.addConstraint(right[n - 1] == width)
    solver.updateVariables()
    return solver, left, positions


def per_call_seconds(body, budget):
    """Median over 5 batches of the time one call takes; each batch runs
    about `budget` seconds' worth of calls."""
    start = time.perf_counter()
    body()
    once = max(time.perf_counter() - start, 1e-7)
    count = max(1, int(budget / once))
    batches = []
    for _ in range(5):
        start = time.perf_counter()
        for _ in range(count):
            body()
        batches.append((time.perf_counter() - start) / count)
    return statistics.median(batches)


def offsets():
    step = 0
    while True:
        step = (step + 1) % 100
        yield step if step < 50 else 100 - step


def kiwi_build(n):
    return per_call_seconds(lambda: build(n), 0.3)


def kiwi_drag_edit(n):
    divider = n // 2
    solver, left, _ = build(n, edit_divider=divider)
    walk = offsets()

    def step():
        solver.suggestValue(left[divider], PITCH * divider + next(walk))
        solver.updateVariables()
    return per_call_seconds(step, 0.2)


def kiwi_drag_readd(n):
    divider = n // 2
    solver, left, positions = build(n)
    current = [positions[divider - 1]]
    walk = offsets()

    def step():
        solver.removeConstraint(current[0])
        current[0] = (left[divider] == PITCH * divider + next(walk)) | POSITION
        solver.addConstraint(current[0])
        solver.updateVariables()
    return per_call_seconds(step, 0.2)


def talvo_figures(bench):
    out = subprocess.run([bench, "--benchmark_filter=BM_BuildSplit|BM_DragSplit",
                          "--benchmark_format=json", "--benchmark_repetitions=5",
                          "--benchmark_report_aggregates_only=true"],
                         check=True, capture_output=True, text=True)
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
    figures = {}
    for b in json.loads(out.stdout)["benchmarks"]:
        if b.get("aggregate_name") != "median":
            continue
        name = b["run_name"]  # e.g. BM_BuildSplit/100
        figures[name] = b["real_time"] * scale[b["time_unit"]]
    return figures


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    bench = sys.argv[1] if len(sys.argv) > 1 else os.path.join(
        root, "build-release", "bench", "LayoutSolverBench")
    talvo = talvo_figures(bench)

    print(f"kiwisolver {kiwi.__version__} (Python {sys.version.split()[0]}, {sys.executable}) "
          f"against Talvo ({bench}); medians")
    print()
    print("build + solve     kiwi (ms)   Talvo (ms)   kiwi / Talvo")
    for n in SIZES:
        k = kiwi_build(n)
        t = talvo[f"BM_BuildSplit/{n}"]
        print(f"  {n:5d} views   {k * 1e3:10.3f}   {t * 1e3:10.3f}   {k / t:10.1f}x")
    print()
    print("drag step         kiwi edit (us)   kiwi re-add (us)   Talvo (us)   best kiwi / Talvo")
    for n in SIZES:
        edit = kiwi_drag_edit(n)
        readd = kiwi_drag_readd(n)
        best, how = (edit, "edit") if edit <= readd else (readd, "re-add")
        t = talvo[f"BM_DragSplit/{n}"]
        print(f"  {n:5d} views   {edit * 1e6:14.2f}   {readd * 1e6:16.2f}   {t * 1e6:10.3f}"
              f"   {best / t:10.1f}x ({how})")


if __name__ == "__main__":
    main()
