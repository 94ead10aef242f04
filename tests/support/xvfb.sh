# Sourced by the viewer tests: starts Xvfb on a display it finds free itself
# (-displayfd, so parallel tests and xvfb-run never race for a number), sets
# DISPLAY and $xvfb, or exits 77 when there is no Xvfb.
#   start_xvfb OUT_DIR
start_xvfb() {
    command -v Xvfb >/dev/null 2>&1 || { echo "Xvfb missing"; exit 77; }
    rm -f "$1/display"
    Xvfb -displayfd 3 -screen 0 640x480x24 -nolisten tcp 3>"$1/display" >"$1/xvfb.log" 2>&1 &
    xvfb=$!
    i=0
    while [ ! -s "$1/display" ] && [ $i -lt 300 ]; do sleep 0.1; i=$((i + 1)); done
    [ -s "$1/display" ] || { echo "Xvfb did not start"; cat "$1/xvfb.log"; exit 77; }
    export DISPLAY=":$(head -n 1 "$1/display")"
}
