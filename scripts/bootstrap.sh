#!/usr/bin/env bash
# Installs every Debian 12 package Nomen needs to build, run and test.
# This is the only place packages are named. Idempotent: apt is asked only
# for what is missing. Works as root or through sudo.
set -euo pipefail

packages=(
  build-essential cmake pkg-config ninja-build
  qt6-base-dev qt6-declarative-dev qt6-tools-dev qt6-l10n-tools
  libgl-dev
  libicu-dev libexiv2-dev perl libplist-dev tzdata
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xauth libx11-dev libxtst-dev libxss-dev
  libglib2.0-dev shared-mime-info
  clang libclang-rt-14-dev
  rename
  fonts-dejavu-core libespeak-ng-dev espeak-ng-data
  procps openbox
  qt6-speech-dev qt6-speech-flite-plugin qt6-image-formats-plugins
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
