#!/usr/bin/env python3
"""Reading an image file's pixel size without decoding it: Talvo's
+[NSImage sizeForFileAtURL:] (from ImageLoadingBench, in process) against
libvips' `vipsheader` and ImageMagick's `identify -ping`, on the same files
(written by ImageLoadingBench --fixtures=DIR) in the same run.

A tool's start-up is taken out by timing one run over N copies of a file and
one run over a single copy: (t(N) - t(1)) / (N - 1) is its cost per file.
Talvo's figure is set beside the open + read + close floor of the same file."""
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

RUNS = 5
COPIES = 101
FORMATS = ["photo.png", "photo.jpg", "photo.gif", "photo.bmp", "photo.tif", "photo.webp"]


def median_seconds(command):
    times = []
    for _ in range(RUNS):
        start = time.perf_counter()
        subprocess.run(command, check=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        times.append(time.perf_counter() - start)
    return statistics.median(times)


def per_file_us(tool, files):
    many = median_seconds(tool + files)
    one = median_seconds(tool + files[:1])
    return (many - one) / (len(files) - 1) * 1e6


def main():
    bench = sys.argv[1]
    work = tempfile.mkdtemp(prefix="talvo-header.")
    try:
        subprocess.run([bench, "--fixtures=" + work], check=True)
        out = subprocess.run([bench, "--benchmark_filter=BM_SizeForFileAtURL|BM_OpenReadCloseFloor",
                              "--benchmark_format=json"], check=True, capture_output=True, text=True)
        talvo, floor = {}, {}
        for b in json.loads(out.stdout)["benchmarks"]:
            target = talvo if b["name"].startswith("BM_SizeForFileAtURL") else floor
            target[b["label"]] = b["real_time"]

        have_vips = shutil.which("vipsheader") is not None
        have_magick = shutil.which("identify") is not None
        print(f"{'file (640 x 480)':18s} {'Talvo':>9s} {'floor':>9s} {'ratio':>6s} "
              f"{'vipsheader':>11s} {'identify':>10s}   (us per file)")
        for name in FORMATS:
            source = os.path.join(work, name)
            base, ext = os.path.splitext(name)
            copies = []
            for i in range(COPIES):
                copy = os.path.join(work, f"{base}-{i:03d}{ext}")
                shutil.copyfile(source, copy)
                copies.append(copy)
            vips = per_file_us(["vipsheader"], copies) if have_vips else float("nan")
            magick = per_file_us(["identify", "-ping"], copies) if have_magick else float("nan")
            t, f = talvo[name], floor[name]
            print(f"{name:18s} {t:9.2f} {f:9.2f} {t / f:6.2f} {vips:11.1f} {magick:10.1f}")
            for copy in copies:
                os.remove(copy)
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
