#!/usr/bin/env bash
# Installs every Debian 12 package Nomen needs to build, run and test.
# This is the only place packages are named. Idempotent: apt is asked only
# for what is missing. Works as root or through sudo.
#   --runtime  prints, comma-separated, the packages an installed Nomen needs
#              beyond the libraries it links (the Debian package's Depends)
set -euo pipefail

# Loaded or run while Nomen runs, never linked: the GREP worker, Qt's
# plugins for the display, speech and images, the speech library, the
# file-type and time-zone data.
runtime=(
  perl qt6-qpa-plugins qt6-speech-flite-plugin qt6-image-formats-plugins
  libespeak-ng1 shared-mime-info tzdata
)

if [[ "${1:-}" == "--runtime" ]]; then
  (IFS=,; echo "${runtime[*]}")
  exit 0
fi

packages=(
  "${runtime[@]}"
  build-essential cmake pkg-config ninja-build
  qt6-base-dev qt6-declarative-dev qt6-tools-dev qt6-l10n-tools
  libgl-dev
  libicu-dev icu-devtools libexiv2-dev libexif-dev libtag1-dev libexpat1-dev libheif-dev libavformat-dev libplist-dev
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xauth libx11-dev libxtst-dev libxss-dev
  libglib2.0-dev
  clang libclang-rt-14-dev
  rename
  fonts-dejavu-core libespeak-ng-dev espeak-ng-data
  procps openbox
  qt6-speech-dev qt6-svg-dev
  desktop-file-utils groff-base appstream
  imagemagick libimage-exiftool-perl libheif-examples ffmpeg jhead exiv2 python3-mutagen
  pulseaudio pulseaudio-utils bc x11-xkb-utils
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done

if ((${#missing[@]} == 0)); then
  exit 0
fi

if [[ $(id -u) -eq 0 ]]; then
  as_root=()
elif command -v sudo >/dev/null 2>&1; then
  as_root=(sudo)
else
  echo "bootstrap: need root or sudo to install: ${missing[*]}" >&2
  exit 1
fi

echo "bootstrap: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
