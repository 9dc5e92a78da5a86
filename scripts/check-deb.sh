#!/usr/bin/env bash
# Installs the Debian package on this machine, checks it as an ordinary user, and removes
# it again (the package, and the check user if this script created it). Run as root after
# scripts/package.sh:
#   bash scripts/check-deb.sh [build/varno_<version>_amd64.deb]
# It installs xvfb (xvfb-run) and python3 when missing; python3 closes the editor the way a
# window manager would.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
root="$VARNO_ROOT"
deb="${1:-$(ls -t "$root"/build/varno_*_amd64.deb 2>/dev/null | head -n 1)}"
user="${VARNO_CHECK_USER:-varnocheck}"

[ "$(id -u)" = 0 ] || { echo "check-deb.sh installs a package and needs root." >&2; exit 1; }
[ -f "$deb" ] || { echo "No package found; build it with: bash scripts/package.sh" >&2; exit 1; }
if dpkg-query -W -f='${Status}' varno 2>/dev/null | grep -q "install ok installed"; then
  echo "varno is installed already; remove it first (dpkg -r varno), so this check can leave the machine as it was." >&2
  exit 1
fi

varno_install xvfb xauth python3

created_user=0
if ! id "$user" >/dev/null 2>&1; then
  useradd -M -s /bin/sh "$user"
  created_user=1
fi
# A fresh home, so the user's folder starts empty as on a first run.
home="$(mktemp -d /tmp/varno-check-home.XXXXXX)"
chown "$user:" "$home"
folder="$home/.local/share/varno"
closer="$(mktemp --suffix=.py)"
cleanup() {
  dpkg -r varno >/dev/null 2>&1 || true
  rm -rf "$home" "$closer"
  [ "$created_user" = 1 ] && userdel "$user" >/dev/null 2>&1 || true
}
trap cleanup EXIT

failures=0
check() {
  local what="$1"; shift
  if "$@"; then echo "ok    $what"; else echo "FAIL  $what"; failures=$((failures + 1)); fi
}
# A clean login-like environment: nothing of root's XDG or Qt settings leaks in.
as_user() {
  runuser -u "$user" -- env -i HOME="$home" USER="$user" LOGNAME="$user" PATH=/usr/bin:/bin LANG=C.UTF-8 "$@"
}

echo "Installing $deb"
dpkg -i "$deb"
share=/usr/share/varno
demo="$share/layouts/AU1_demo.lyt"

check "programs in /usr/bin" test -x /usr/bin/varno -a -x /usr/bin/varno-cli
check "desktop entry, icon and .lyt type installed" \
  test -f /usr/share/applications/varno.desktop -a -f /usr/share/icons/hicolor/256x256/apps/varno.png \
       -a -f /usr/share/mime/packages/varno.xml
check "the MIME database knows *.lyt" grep -q "application/x-lfs-layout:\*\.lyt" /usr/share/mime/globs2
if command -v desktop-file-validate >/dev/null; then
  check "desktop entry is valid" desktop-file-validate /usr/share/applications/varno.desktop
fi

# The command-line tool, as the user, before the editor ever ran.
info="$(as_user varno-cli info --json "$demo")" && rc=0 || rc=$?
check "varno-cli info on the shipped demo (exit $rc)" test "$rc" = 0 -a -n "$info"
if [ -x "$root/build/bin/varno-cli" ]; then
  check "same JSON as the build's varno-cli" test "$info" = "$("$root/build/bin/varno-cli" info --json "$demo")"
fi
check "user's folder $folder filled from $share" \
  test -f "$folder/layouts/AU1_demo.lyt" -a -f "$folder/lang/English.lng" -a -d "$folder/packs" \
       -a "$(find "$share" -type f | wc -l)" = "$(find "$folder" -type f ! -name .shipped-version | wc -l)"
check "everything in the user's folder writable by the user" test -z "$(as_user find "$folder" ! -writable)"
as_user env XDG_DATA_HOME="$home/elsewhere" varno-cli info "$demo" >/dev/null
check "XDG_DATA_HOME moves the folder" test -f "$home/elsewhere/varno/lang/English.lng"

# The editor on a virtual screen, opening the demo from its command line. Closing the
# first-run Options and then the main window, as a window manager would, lets it write
# Varno.cfg on the way out.
cat >"$closer" <<'PY'
import ctypes as C, sys, time
X = C.cdll.LoadLibrary("libX11.so.6")
V, W = C.c_void_p, C.c_ulong
X.XOpenDisplay.restype, X.XOpenDisplay.argtypes = V, [C.c_char_p]
X.XDefaultRootWindow.restype, X.XDefaultRootWindow.argtypes = W, [V]
X.XInternAtom.restype, X.XInternAtom.argtypes = W, [V, C.c_char_p, C.c_int]
X.XQueryTree.argtypes = [V, W, C.POINTER(W), C.POINTER(W), C.POINTER(C.POINTER(W)), C.POINTER(C.c_uint)]
X.XGetWindowProperty.argtypes = [V, W, W, C.c_long, C.c_long, C.c_int, W, C.POINTER(W), C.POINTER(C.c_int),
                                 C.POINTER(C.c_ulong), C.POINTER(C.c_ulong), C.POINTER(V)]
X.XSendEvent.argtypes = [V, W, C.c_int, C.c_long, V]
X.XFlush.argtypes = X.XFree.argtypes = [V]

class ClientMessage(C.Structure):
    _fields_ = [("type", C.c_int), ("serial", C.c_ulong), ("send_event", C.c_int), ("display", V),
                ("window", W), ("message_type", W), ("format", C.c_int), ("l", C.c_long * 5),
                ("pad", C.c_long * 12)]  # an XEvent is 24 longs

d = X.XOpenDisplay(None)
atom = lambda name: X.XInternAtom(d, name, 0)

def title(w):
    for prop in (atom(b"_NET_WM_NAME"), atom(b"WM_NAME")):
        t, f, n, after, data = W(), C.c_int(), C.c_ulong(), C.c_ulong(), V()
        if X.XGetWindowProperty(d, w, prop, 0, 256, 0, 0, C.byref(t), C.byref(f), C.byref(n), C.byref(after),
                                C.byref(data)) == 0 and data.value:
            text = C.string_at(data.value, n.value).decode("utf-8", "replace")
            X.XFree(data)
            if text:
                return text
    return ""

def windows():
    root, parent, kids, n = W(), W(), C.POINTER(W)(), C.c_uint()
    X.XQueryTree(d, X.XDefaultRootWindow(d), C.byref(root), C.byref(parent), C.byref(kids), C.byref(n))
    found = [(kids[i], title(kids[i])) for i in range(n.value)]
    if kids:
        X.XFree(kids)
    return [(w, t) for w, t in found if t]

def close(w):
    ev = ClientMessage(type=33, window=w, message_type=atom(b"WM_PROTOCOLS"), format=32)
    ev.l[0] = atom(b"WM_DELETE_WINDOW")
    X.XSendEvent(d, w, 0, 0, C.byref(ev))
    X.XFlush(d)

# Waits for the main window titled argv[1]..., then closes the dialogs titled argv[2:]
# (a modal one blocks the main window) and the main window, asking again until it is gone.
wanted, dialogs = sys.argv[1], sys.argv[2:]
seen, shown = [], False
for _ in range(60):
    seen = windows()
    main = [w for w, t in seen if t.startswith(wanted)]
    if not shown:
        if main:
            shown = True
            print("windows:", ", ".join(sorted(t for _, t in seen)))
            time.sleep(2)  # let it finish drawing and open its first-run dialog
            continue
    elif not main:
        sys.exit(0)
    else:
        open_dialogs = [w for w, t in seen if t in dialogs]
        for w in open_dialogs or main:
            close(w)
    time.sleep(0.5)
print("%s; saw %s" % ("the main window did not close" if shown else "no window titled %r" % wanted,
                      [t for _, t in seen]))
sys.exit(1)
PY
chmod 644 "$closer"
gui_rc=0
as_user timeout 90 xvfb-run -a -s "-screen 0 1280x1024x24" sh -c '
  varno "$1" & pid=$!
  python3 "$2" "Varno - AU1_demo" Options || { kill $pid; wait $pid; exit 1; }
  wait $pid' _ "$demo" "$closer" || gui_rc=$?
check "varno starts, opens the layout named on its command line and closes (exit $gui_rc)" test "$gui_rc" = 0
check "Varno.cfg written in the user's folder" test -f "$folder/Varno.cfg" -a "$(stat -c %U "$folder/Varno.cfg" 2>/dev/null)" = "$user"
check "its settings point into that folder" grep -q "^AU1 $folder/backgrounds/AU1.png" "$folder/Varno.cfg"
check "nothing in Varno.log" test ! -s "$folder/Varno.log"
[ -s "$folder/Varno.log" ] && cat "$folder/Varno.log"

# The build still runs in place: its folder is its own, whatever HOME says.
if [ -x "$root/build/bin/varno-cli" ]; then
  scratch="$(mktemp -d)"
  HOME="$scratch" XDG_DATA_HOME= "$root/build/bin/varno-cli" info "$demo" >/dev/null
  check "build/bin/varno-cli keeps using build/bin" test ! -e "$scratch/.local/share/varno"
  rm -rf "$scratch"
fi

dpkg -r varno >/dev/null
check "dpkg -r removes the programs" test ! -e /usr/bin/varno -a ! -e /usr/share/varno

if [ "$failures" = 0 ]; then echo "All checks passed."; else echo "$failures check(s) failed."; exit 1; fi
