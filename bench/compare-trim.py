#!/usr/bin/env python3
"""Trimming a 4096 x 4096 RGBA image with an opaque rectangle in the middle:
Talvo's VXGetFilledRect (from ImageBench, in-process) against ImageMagick's
-trim on an .mpc input and libvips' find_trim on a .v input, run on the same
image in the same run. For the two tools the same command on a 16 x 16 image is
timed too and subtracted: what is left is their trimming, without process
start-up and decoding."""
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time

RUNS = 5


def median_seconds(command):
    times = []
    for _ in range(RUNS):
        start = time.perf_counter()
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        times.append(time.perf_counter() - start)
    return statistics.median(times)


def main():
    bench = sys.argv[1]
    work = tempfile.mkdtemp(prefix="talvo-trim.")
    big = os.path.join(work, "big.png")
    tiny = os.path.join(work, "tiny.png")
    subprocess.run(["convert", "-size", "4096x4096", "xc:none", "-fill", "rgb(200,40,40)",
                    "-draw", "rectangle 1000,1200 2999,2799", big], check=True)
    subprocess.run(["convert", "-size", "16x16", "xc:none", "-fill", "rgb(200,40,40)",
                    "-draw", "rectangle 4,4 11,11", tiny], check=True)
    for name in ("big", "tiny"):
        png = os.path.join(work, name + ".png")
        subprocess.run(["convert", png, os.path.join(work, name + ".mpc")], check=True)
        subprocess.run(["vips", "copy", png, os.path.join(work, name + ".v")], check=True)

    magick = median_seconds(["convert", os.path.join(work, "big.mpc"), "-trim", "info:"])
    magick_base = median_seconds(["convert", os.path.join(work, "tiny.mpc"), "-trim", "info:"])
    vips = median_seconds(["vips", "find_trim", os.path.join(work, "big.v"), "--background", "0"])
    vips_base = median_seconds(["vips", "find_trim", os.path.join(work, "tiny.v"), "--background", "0"])

    out = subprocess.run([bench, "--benchmark_filter=BM_GetFilledRect|BM_CopyFloor",
                          "--benchmark_format=json"], check=True, capture_output=True, text=True)
    results = {b["name"]: b["real_time"] for b in json.loads(out.stdout)["benchmarks"]}
    talvo_ms = results["BM_GetFilledRect"]
    floor_ms = results["BM_CopyFloor"]

    rows = [
        ("Talvo VXGetFilledRect (in process)", talvo_ms),
        ("copy-once floor (malloc + memcpy + free, 64 MiB)", floor_ms),
        ("ImageMagick -trim on .mpc, minus start-up", (magick - magick_base) * 1000),
        ("libvips find_trim on .v, minus start-up", (vips - vips_base) * 1000),
    ]
    for label, ms in rows:
        print(f"{label:52s} {ms:9.1f} ms")
    print(f"{'ImageMagick start-up + decode of a 16x16 image':52s} {magick_base * 1000:9.1f} ms")
    print(f"{'libvips start-up + decode of a 16x16 image':52s} {vips_base * 1000:9.1f} ms")
    print(f"Talvo / floor: {talvo_ms / floor_ms:.2f}x; "
          f"ImageMagick / Talvo: {(magick - magick_base) * 1000 / talvo_ms:.1f}x; "
          f"libvips / Talvo: {(vips - vips_base) * 1000 / talvo_ms:.1f}x")


if __name__ == "__main__":
    main()
