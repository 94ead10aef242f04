#!/bin/sh
# Installs the Debian packages Zephrin2D needs to build, test and run its tools.
# Idempotent: when everything is there it prints nothing and returns at once.
set -e
PACKAGES="build-essential cmake pkg-config git
  libgles-dev libegl-dev libegl-mesa0 libgl1-mesa-dri libx11-dev
  libpng-dev zlib1g-dev libboost-dev libglibmm-2.4-dev libjsoncpp-dev
  libfreetype-dev libfontconfig-dev fonts-dejavu-core
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xauth x11-utils"
missing=""
for p in $PACKAGES; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing="$missing $p"
  fi
done
[ -z "$missing" ] && exit 0
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
echo "install-deps: installing$missing"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends $missing >/dev/null
