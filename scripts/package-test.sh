#!/usr/bin/env bash
# The Debian package as a user gets it: builds it, installs it with its dependencies into a fresh
# minimal Debian root, uses it there, purges it, and looks for what it left. Needs root (or sudo)
# for the root's sake, and takes a few minutes, most of them to fetch packages.
# usage: scripts/package-test.sh [BUILD-FOLDER]      without: build/release
set -euo pipefail
cd "$(dirname "$0")/.."
if [[ $(id -u) -ne 0 ]]; then exec sudo --preserve-env=http_proxy,https_proxy "$0" "$@"; fi

scripts/dependencies.sh package
build=${1:-build/release}
[[ -f $build/build.ninja ]] || cmake --preset release -B "$build" -DBUILD_TESTING=OFF >/dev/null

root=
failures=0
clean_up() {
    if [[ -n $root ]]; then
        if mountpoint -q "$root/proc"; then umount "$root/proc"; fi
        if mountpoint -q "$root/dev/shm"; then umount "$root/dev/shm"; fi
        rm -rf --one-file-system "$root"
    fi
}
trap clean_up EXIT

step() { printf '\n== %s (%s s)\n' "$1" "$SECONDS"; }
fail() {
    printf 'FAILED: %s\n' "$*" >&2
    failures=$((failures + 1))
}
check() { # check WHAT COMMAND...
    local what=$1 output
    shift
    if output=$("$@" 2>&1); then
        printf 'ok: %s\n' "$what"
    else
        fail "$what: $output"
    fi
}

clean_environment=(env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8
                   DEBIAN_FRONTEND=noninteractive http_proxy="${http_proxy:-}"
                   https_proxy="${https_proxy:-}")
in_root() { chroot "$root" "${clean_environment[@]}" HOME=/tmp "$@" </dev/null; }
as_user() {
    chroot --userspec=1000:1000 "$root" "${clean_environment[@]}" HOME=/tmp/home \
        SDL_AUDIODRIVER=dummy "$@" </dev/null
}
apt_in_root() { in_root apt-get -qq -y -o Dpkg::Use-Pty=0 "$@" >"$root/tmp/apt.log" 2>&1 ||
    { cat "$root/tmp/apt.log" >&2; exit 1; }; }

step "package"
cmake --build "$build"
rm -f "$build"/tarvelin_*.deb
(cd "$build" && cpack -G DEB >cpack.log) || { cat "$build/cpack.log" >&2; exit 1; }
package=$(echo "$build"/tarvelin_*.deb)
dpkg-deb --info "$package" | sed -n 's/^ \(Depends\|Recommends\|Suggests\|Installed-Size\):/\1:/p'
ls -l "$package" | awk '{print $5 " bytes"}'

step "fresh root"
# The host's own release and archives, as its apt knows them.
# shellcheck source=/dev/null
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
targets() {
    apt-get indextargets --format "$1" 'Created-By: Packages' 'Origin: Debian' \
        "Architecture: $(dpkg --print-architecture)"
}
mirror=$(targets '$(RELEASE) $(COMPONENT) $(REPO_URI)' |
    awk -v codename="$codename" '$1 == codename && $2 == "main" {print $3; exit}')
[[ -n $mirror ]] || { echo "apt has no source for $codename" >&2; exit 1; }
root=$(mktemp -d)
chmod 755 "$root"
debootstrap --variant=minbase "$codename" "$root" "$mirror" >"$build/debootstrap.log" 2>&1 ||
    { tail "$build/debootstrap.log" >&2; exit 1; }
targets 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' | sort -u >"$root/etc/apt/sources.list"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # no service starts in here
chmod 755 "$root/usr/sbin/policy-rc.d"
mount -t proc proc "$root/proc"
mkdir -p "$root/dev/shm"
mount -t tmpfs tmpfs "$root/dev/shm"
apt_in_root update
apt_in_root dist-upgrade
# What the check itself uses, and what a desktop has that finds files' types.
apt_in_root install --no-install-recommends xvfb xauth xdotool man-db shared-mime-info xdg-utils \
    libfile-mimeinfo-perl desktop-file-utils
in_root useradd --create-home --home-dir /tmp/home --uid 1000 player

list() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./tmp -o -path ./run \
        -o -path ./var/cache/apt -o -path ./var/lib/apt \) -prune -o -print) | sort
}
list >"$root/tmp/before"

step "install"
cp "$package" "$root/tmp/tarvelin.deb"
# Without the recommended packages: what it depends on must be enough.
apt_in_root install --no-install-recommends /tmp/tarvelin.deb
in_root dpkg-query -W -f '${Package} ${Version} ${Status}\n' tarvelin
list >"$root/tmp/installed"
comm -13 "$root/tmp/before" "$root/tmp/installed" | wc -l | sed 's/$/ files came/'

step "use"
documents=/usr/share/doc/tarvelin
check "version" as_user tarvelin --version
check "version without a display" as_user tarvelin-headless --version
check "BASIC converter" as_user tarvelin-bas --version
check "disk tool" as_user tarvelin-disk --version

as_user mkdir -p /tmp/home/play
as_user cp /usr/share/tarvelin/examples/colours.cmd /tmp/home/play/
check "run without a display" as_user tarvelin-headless /w /s 4 /t 5 /tmp/home/play/colours.cmd
check "its picture" test -s "$root/tmp/home/play/colours0000.gif"
# The same run on this host draws the same picture.
mkdir "$root/tmp/here"
cp "$root/usr/share/tarvelin/examples/colours.cmd" "$root/tmp/here/"
"$build/src/tarvelin-headless" /w /s 4 /t 5 "$root/tmp/here/colours.cmd" >/dev/null 2>&1
check "the picture is the host's" \
    cmp "$root/tmp/here/colours0000.gif" "$root/tmp/home/play/colours0000.gif"

cat >"$root/tmp/window.sh" <<'WINDOW'
set -e
cd /tmp/home/play
tarvelin /t 60 colours.cmd >window.log 2>&1 &
program=$!
window=
for _ in $(seq 100); do
    window=$(xdotool search --onlyvisible --pid $program 2>/dev/null | head -n 1) || true
    if [ -n "$window" ]; then break; fi
    sleep 0.1
done
if [ -z "$window" ]; then cat window.log; exit 1; fi
xdotool windowfocus --sync "$window"
sleep 3
xdotool getwindowname "$window" | grep 'Tarvelin - '
xdotool key F6 # a screenshot, numbered after the one that is there
for _ in $(seq 100); do
    if [ -s colours0001.gif ]; then break; fi
    sleep 0.1
done
test -s colours0001.gif
kill $program # closes the window as its user would
wait $program
grep ActiveConfig /tmp/home/.config/tarvelin/settings.toml
WINDOW
check "the window" as_user xvfb-run -a sh /tmp/window.sh

type_of() { as_user xdg-mime query filetype "$1"; }
for example in tune.cmd:program tune.cas:cassette catch.bas:basic; do
    file=/usr/share/tarvelin/examples/${example%:*}
    expected=application/x-colour-genie-${example#*:}
    [[ $(type_of "$file") == "$expected" ]] && printf 'ok: %s\n' "$expected" ||
        fail "the type of $file is $(type_of "$file"), not $expected"
done
[[ $(as_user xdg-mime query default application/x-colour-genie-program) == tarvelin.desktop ]] &&
    echo "ok: opened by tarvelin.desktop" || fail "no program for a load module"

for page in tarvelin tarvelin-headless tarvelin-bas tarvelin-disk; do
    check "man $page" as_user sh -c "man $page | grep -q SYNOPSIS"
done
for name in copyright changelog.gz; do check "$name" test -s "$root$documents/$name"; done
# Every picture and page that the manuals show or lead to is there.
for page in manual keys firmware reference sdk examples benchmarks accuracy; do
    check "$page.html" test -s "$root$documents/$page.html"
    while read -r target; do
        check "$page.html: $target" test -s "$root$documents/$target"
    done < <(grep -oE '(src|href)="[^"#:]+' "$root$documents/$page.html" | cut -d'"' -f2 | sort -u)
done

# The codecs of libavcodec are there when it is, and nothing else depends on it.
film() { as_user tarvelin-headless --setting VideoCodec="$1" /w /t 1 /v /tmp/home/film.avi; }
check "a film" film rle
if film ffv1 2>/dev/null; then fail "a codec without its library"; fi
recommended=$(in_root dpkg-query -W -f '${Recommends}' tarvelin | tr ',' '\n' |
    grep -oE '^ *lib(avcodec|avutil|swscale)[0-9]+')
apt_in_root install --no-install-recommends $recommended
check "a film by libavcodec" film ffv1
apt_in_root purge --autoremove $recommended

step "purge"
apt_in_root purge --autoremove tarvelin
list >"$root/tmp/after"
# State of tools that others' packages brought: their caches and logs come anew with every run.
left=$(comm -13 "$root/tmp/before" "$root/tmp/after" |
    grep -vE '^\./var/(log|cache)/|^\./var/lib/(dpkg|systemd|dbus)/|^\./etc/machine-id$' || true)
gone=$(comm -23 "$root/tmp/before" "$root/tmp/after" | grep -vE '^\./var/(log|cache|lib/dpkg)/' || true)
[[ -z $left ]] && echo "ok: no file is left" || fail "left behind: $left"
[[ -z $gone ]] && echo "ok: no file of others is gone" || fail "gone: $gone"
named=$(grep -iE 'tarvelin|colour-genie' "$root/tmp/after" || true)
[[ -z $named ]] && echo "ok: no name is left" || fail "left behind: $named"
mentioned=$(grep -rliE 'tarvelin|colour-genie' "$root/usr" "$root/etc" "$root/var/lib" \
    --exclude-dir=apt || true)
[[ -z $mentioned ]] && echo "ok: nothing mentions it" || fail "mentioned in: $mentioned"

step "done: $failures failures"
((failures == 0))
