#!/usr/bin/env bash
# Fetches the sources of zlib and minizip from the distribution, signed as its packages are, for hosts
# that the distribution does not build them for. They come into build/sources.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
folder=$root/build/sources
if [[ -f $folder/complete ]]; then exit 0; fi

rm -rf "$folder"
mkdir -p "$folder/lists/partial"
# The archive and release that packages come from, without touching the system's own list: as apt knows
# them, or without an index as its files name them.
read -r mirror release < <(apt-get indextargets --format '$(SITE) $(CODENAME)' 'Created-By: Packages' |
    grep -v -e -security -e -updates) || true
if [[ -z ${release:-} ]]; then
    mirror=$(find /etc/apt -name '*.list' -o -name '*.sources' | sort | xargs cat |
        sed -n 's/^URIs: *//p; s/^deb \(\[[^]]*\] *\)\?\([^ ]*\) .*/\2/p' | grep -v security | sed -n 1p)
    release=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
fi
key=/usr/share/keyrings/debian-archive-keyring.gpg
echo "deb-src [signed-by=$key] $mirror $release main" >"$folder/source.list"
apt_options=(-qq -o "Dir::Etc::SourceList=$folder/source.list" -o Dir::Etc::SourceParts=-
             -o "Dir::State::Lists=$folder/lists" -o "Dir::Cache::srcpkgcache=$folder/srcpkgs.bin"
             -o "Dir::Cache::pkgcache=$folder/pkgs.bin" -o APT::Sandbox::User=)
apt-get "${apt_options[@]}" update
(cd "$folder" && apt-get "${apt_options[@]}" source zlib minizip >/dev/null)
mv "$folder"/zlib-*/ "$folder/zlib"
mv "$folder"/minizip-*/ "$folder/minizip"
rm -rf "$folder/lists"
touch "$folder/complete"
