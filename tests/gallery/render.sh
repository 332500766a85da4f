#!/bin/sh
# Runs the gallery headless and fails if it exits non-zero (a page raised or
# rendered blank) or logs an error. X server noise is not the gallery's.
set -u
gallery=$1
out=$(mktemp -d "${TMPDIR:-/tmp}/talvo-gallery.XXXXXX")
trap 'rm -rf "$out"' EXIT
log="$out/log"
"$gallery" --headless "$out/pages" -GSSuppressAppIcon YES > "$log" 2>&1
status=$?
cat "$log"
if [ $status -ne 0 ]; then
  echo "gallery exited with $status"
  exit 1
fi
noise='BadWindow|X-Windows error|on display:|type: |serial number:|request code:|offsets for style'
if grep -v -E "$noise" "$log" | grep -i -E 'error|exception|unable to|raised' > /dev/null; then
  echo "gallery logged an error"
  exit 1
fi
# The split view page starts with its three panels at their autosaved widths.
if ! grep -E 'layout: Navigator 0\+180 Content 181\+[0-9.]+ Inspector [0-9.]+\+200$' "$log" > /dev/null; then
  echo "the split view page's panels are not at their widths"
  exit 1
fi
count=$(ls "$out/pages"/*.png 2>/dev/null | wc -l)
echo "$count pages rendered"
[ "$count" -ge 6 ]
