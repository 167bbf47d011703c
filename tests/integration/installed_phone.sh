#!/usr/bin/env bash
# agp-phone installed under a prefix runs from there: its plug-in, demo and web page come from
# the prefix, not from the build or source tree.
# Usage: installed_phone.sh BUILD_DIR
set -euo pipefail
build=$1
prefix=$build/installed-phone
rm -rf "$prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

# Marks on the installed copies show which copy the program served.
sed -i 's|<Title>AGP demo</Title>|<Title>Installed demo</Title>|' "$prefix/share/agp/demo/start.xml"
sed -i 's|<title>|<title>installed copy |' "$prefix/share/agp/web/index.html"

out=$prefix/agp-phone.out
"$prefix/bin/agp-phone" --demo --app "Installed-$$" --push off --http 127.0.0.1:0 --render none >"$out" 2>&1 &
phone=$!
trap 'kill $phone 2>/dev/null || true' EXIT
page=""
for _ in $(seq 100); do
    page=$(sed -n 's|^agp-phone: web page at \(http://[0-9.:]*/\)$|\1|p' "$out")
    [ -n "$page" ] && break
    sleep 0.1
done
[ -n "$page" ] || { echo "no web page address printed:"; cat "$out"; exit 1; }

# Read whole before looking: grep -q leaving early would fail curl's write under pipefail.
index=$(curl -sf "$page")
case $index in *"<title>installed copy "*) ;; *) echo "the web page is not the installed one"; exit 1 ;; esac
text=""
for _ in $(seq 100); do
    text=$(curl -sf "${page}api/screen/text")
    case $text in *"Installed demo"*) break ;; esac
    sleep 0.1
done
case $text in *"Installed demo"*) ;; *) echo "the demo is not the installed one:"; echo "$text"; exit 1 ;; esac

curl -sf -X POST -H 'Content-Type: application/json' "${page}api/quit" -d '{}' >/dev/null
wait $phone
trap - EXIT
echo "installed agp-phone ran its installed plug-in, demo and web page"
