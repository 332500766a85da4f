#!/usr/bin/env python3
"""Lanczos-3 resampling, one thread, on the same pictures in the same run:
Talvo's resampler (LanczosBench, in process, CPU time) against libvips
(`vips reduce` / `vips resize --kernel lanczos3` on a .v file) and ImageMagick
(`-filter Lanczos -resize` on raw RGBA). For each tool a baseline command that
starts the tool, opens the same input and writes an output of the result's
size (vips: extract_area/embed of a .v file, which is mapped, not decoded;
ImageMagick: -crop/-extent of the raw file, which it reads whole) is timed
too and subtracted: what is left is the resampling.

All times are CPU time (user + system), medians.

Usage: compare-lanczos.py path/to/LanczosBench [runs]"""
import json
import os
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile


def child_cpu_ms():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return (usage.ru_utime + usage.ru_stime) * 1000


def median_ms(command, runs, env):
    """Median CPU time (user + system, all threads) of the command: on a
    shared machine wall time mostly measures the neighbours."""
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=env)
    times = []
    for _ in range(runs):
        start = child_cpu_ms()
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=env)
        times.append(child_cpu_ms() - start)
    return statistics.median(times)


def magick_command():
    for name in ("convert-im6.q16", "magick", "/usr/bin/convert"):
        path = shutil.which(name)
        if path:
            return [path]
    sys.exit("compare-lanczos: ImageMagick not found (tools/install-deps --bench)")


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    bench = sys.argv[1]
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 7
    if not shutil.which("vips"):
        sys.exit("compare-lanczos: vips not found (tools/install-deps --bench)")
    magick = magick_command()
    env = dict(os.environ, VIPS_CONCURRENCY="1", MAGICK_THREAD_LIMIT="1", OMP_NUM_THREADS="1")
    work = tempfile.mkdtemp(prefix="talvo-lanczos.")
    try:
        subprocess.run([bench, "--write_input=" + work], check=True)
        for side in (4096, 512):
            raw = os.path.join(work, "in%d.raw" % side)
            subprocess.run(["vips", "rawload", raw, os.path.join(work, "in%d.v" % side),
                            str(side), str(side), "4"], check=True, env=env)
        out_v = os.path.join(work, "out.v")
        out_raw = "rgba:" + os.path.join(work, "out.raw")

        def vips(*args):
            return ["vips"] + [a if not a.startswith("@") else os.path.join(work, a[1:]) for a in args]

        def im(side, *ops):
            return magick + ["-limit", "thread", "1", "-size", "%dx%d" % (side, side), "-depth", "8",
                             "rgba:" + os.path.join(work, "in%d.raw" % side)] + list(ops) + [out_raw]

        cases = [
            ("4096->1024", 4096, 1024, "BM_Lanczos_4096_to_1024/",
             [("vips reduce 4 4 --kernel lanczos3", vips("reduce", "@in4096.v", out_v, "4", "4",
                                                         "--kernel", "lanczos3")),
              ("vips resize 0.25 --kernel lanczos3", vips("resize", "@in4096.v", out_v, "0.25",
                                                          "--kernel", "lanczos3"))],
             vips("extract_area", "@in4096.v", out_v, "0", "0", "1024", "1024"),
             im(4096, "-filter", "Lanczos", "-resize", "1024x1024"),
             im(4096, "-crop", "1024x1024+0+0")),
            ("512->1536", 512, 1536, "BM_Lanczos_512_to_1536/",
             [("vips resize 3 --kernel lanczos3", vips("resize", "@in512.v", out_v, "3",
                                                       "--kernel", "lanczos3"))],
             vips("embed", "@in512.v", out_v, "0", "0", "1536", "1536"),
             im(512, "-filter", "Lanczos", "-resize", "1536x1536"),
             im(512, "-background", "none", "-extent", "1536x1536")),
        ]

        out = subprocess.run([bench, "--benchmark_filter=BM_Lanczos_[0-9_to]*/",
                              "--benchmark_format=json", "--benchmark_repetitions=5"],
                             check=True, capture_output=True, text=True)
        talvo = {}
        for b in json.loads(out.stdout)["benchmarks"]:
            if b.get("aggregate_name") == "median":
                talvo[b["run_name"]] = (b["cpu_time"], b["real_time"])

        for label, side, result, key, vips_runs, vips_write, im_run, im_base in cases:
            print("== %s RGBA, one thread (median of %d) ==" % (label, runs))
            talvo_cpu, talvo_real = next(v for k, v in talvo.items() if k.startswith(key))
            print("  %-52s %8.1f ms (wall %.1f)" % ("Talvo ResampleLanczos3 (in process, CPU)", talvo_cpu, talvo_real))
            base = median_ms(vips_write, runs, env)
            best_vips = None
            for name, command in vips_runs:
                net = median_ms(command, runs, env) - base
                best_vips = net if best_vips is None else min(best_vips, net)
                print("  %-52s %8.1f ms net" % (name, net))
            print("  %-52s %8.1f ms" % ("  (vips baseline subtracted)", base))
            im_net = median_ms(im_run, runs, env) - median_ms(im_base, runs, env)
            print("  %-52s %8.1f ms net" % ("ImageMagick -filter Lanczos -resize", im_net))
            print("  Talvo / best vips: %.2fx   Talvo / ImageMagick: %.2fx" %
                  (talvo_cpu / best_vips, talvo_cpu / im_net))
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
