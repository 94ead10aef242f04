#!/bin/sh
# Makes the sysroot a cross build links against and the emulator runs from:
# the Debian packages the project needs, for ARCH (armhf or arm64), extracted
# into build-sysroot-ARCH/. Made once; an existing sysroot is reused.
# The archive is the one this machine's apt uses (MIRROR= overrides it).
set -e
ARCH="$1"
case "$ARCH" in
  armhf|arm64) ;;
  *) echo "usage: $0 armhf|arm64 [DIR]" >&2; exit 2 ;;
esac
cd "$(dirname "$0")/.."
DIR="${2:-build-sysroot-$ARCH}"
[ -f "$DIR/.complete" ] && exit 0

SUITE=$(. /etc/os-release && echo "${VERSION_CODENAME:-bookworm}")
if [ -z "$MIRROR" ]; then
  # The first source of the base suite, in either of apt's two formats.
  MIRROR=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
    awk -v s="$SUITE" '$1 == "deb" { i = 2; if ($2 ~ /^\[/) while ($i !~ /\]$/) i++;
      if ($2 ~ /^\[/) i++; if ($(i + 1) == s) { print $i; exit } }')
fi
if [ -z "$MIRROR" ]; then
  MIRROR=$(cat /etc/apt/sources.list.d/*.sources 2>/dev/null |
    awk -v s="$SUITE" 'BEGIN { RS = ""; FS = "\n" }
      { uri = ""; ok = 0
        for (i = 1; i <= NF; i++) {
          if ($i ~ /^URIs:/) { split($i, f, /[ \t]+/); uri = f[2] }
          if ($i ~ /^Suites:/) { n = split($i, f, /[ \t]+/); for (j = 2; j <= n; j++) if (f[j] == s) ok = 1 }
        }
        if (ok && uri != "") { print uri; exit } }')
fi
[ -n "$MIRROR" ] || { echo "make-sysroot: no apt source for $SUITE found; set MIRROR" >&2; exit 1; }

# The -dev packages of scripts/install-deps.sh, the C and C++ runtimes, and
# what the tests load at run time (Mesa's software driver, the fonts).
PACKAGES="libc6-dev libstdc++-12-dev
  libgles-dev libegl-dev libegl-mesa0 libgl1-mesa-dri libx11-dev
  libpng-dev zlib1g-dev libboost-dev libglibmm-2.4-dev libjsoncpp-dev
  libfreetype-dev libfontconfig-dev fontconfig-config fonts-dejavu-core
  libgtest-dev libgmock-dev libstb-dev libtinyxml2-dev"
echo "make-sysroot: $ARCH sysroot from $MIRROR $SUITE into $DIR"
rm -rf "$DIR"
mmdebstrap --quiet --mode=root --variant=extract --architectures="$ARCH" \
  --include="$(echo $PACKAGES | tr ' ' ',')" "$SUITE" "$DIR" "deb $MIRROR $SUITE main"
# The linker resolves links on the host: absolute ones must point into the sysroot.
find "$DIR" -type l -lname '/*' | while read -r link; do
  ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$DIR$(readlink "$link")")" "$link"
done
touch "$DIR/.complete"
