#!/usr/bin/env bash
# Installs what the project needs from the distribution's packages, and only what is missing.
# usage: scripts/dependencies.sh run|web|test|windows|package|pictures
set -euo pipefail

# The compiler's optimisation across files goes serially, with a warning, without make.
# Qt's private headers have the Wayland connection until Qt 6.5.
run_packages=(g++ make cmake ninja-build pasmo pkg-config libtomlplusplus-dev qt6-base-dev
              qt6-base-private-dev libgl-dev libxkbcommon-dev libxkbcommon-x11-dev libxcb1-dev
              libxcb-xkb-dev libwayland-dev libsdl2-dev zlib1g-dev libminizip-dev)
if [[ -n ${WAYLAND_DISPLAY:-} ]]; then run_packages+=(qt6-wayland); fi
test_packages=(libgtest-dev libgif-dev libbenchmark-dev libz80ex-dev clang libclang-rt-dev
               clang-format clang-tidy python3 xvfb xdotool x11-xkb-utils x11-utils appstream
               desktop-file-utils groff-base libxml2-utils shared-mime-info openbox ffmpeg
               libavcodec-dev libswscale-dev weston qt6-wayland nlohmann-json3-dev sdcc)
windows_packages=(g++-mingw-w64-x86-64-posix wine wine64 nsis dpkg-dev googletest)
package_packages=(debootstrap dpkg-dev)
picture_packages=(xvfb xdotool x11-utils openbox imagemagick librsvg2-bin sdcc)

web_packages=(g++ cmake ninja-build pasmo libtomlplusplus-dev emscripten esbuild dpkg-dev python3)
# A browser for the page's tests; Node.js may be another archive's, which has npm in it.
web_test_packages=(chromium)
for tool in node:nodejs npm:npm; do
    command -v "${tool%:*}" >/dev/null || web_test_packages+=("${tool#*:}")
done

packages=("${run_packages[@]}")
case ${1:-run} in
test) packages+=("${test_packages[@]}" "${windows_packages[@]}" "${web_packages[@]}" "${web_test_packages[@]}") ;;
web) packages=("${web_packages[@]}") ;;
windows) packages+=("${windows_packages[@]}") ;;
package) packages+=("${package_packages[@]}") ;;
pictures) packages+=("${picture_packages[@]}") ;;
esac

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
        missing+=("$package")
done
# What the distribution has for itself only.
library_sources() {
    case $1 in
    test | windows | web) "$(dirname "$0")/library-sources.sh" ;;
    esac
}
if [[ ${#missing[@]} -eq 0 ]]; then
    library_sources "${1:-run}"
    exit 0
fi

echo "installing: ${missing[*]}"
# With the archive's news where it can be reached, and after whoever installs just now. Debian has sudo
# only where the administrator has no password.
install="export DEBIAN_FRONTEND=noninteractive
         apt-get update -qq
         apt-get install -y -qq --no-install-recommends -o DPkg::Lock::Timeout=600 ${missing[*]} >/dev/null"
if [[ $(id -u) -eq 0 ]]; then
    sh -c "$install"
elif command -v sudo >/dev/null; then
    sudo sh -c "$install"
else
    su - -c "$install"
fi
library_sources "${1:-run}"
