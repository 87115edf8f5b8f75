#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Installs the project into a temporary prefix as a package would, hides the source and
# build trees, and runs the installed varno-print on the installed sample printer: it must
# print the same ticket as the build tree's; the installed dialog must paint. The installed binaries must hold no path of
# either tree, the plug-in must export only its entry points, and the man page must render
# and name every option of --help.
# Usage: install_test.sh CMAKE BUILD_DIR SOURCE_DIR [sanitized]
# A sanitized build is never packaged, and its sanitizers keep the header paths they report
# in their own data; for it the path check is left out.
set -eu
cmake=$1 build=$2 source=$3 sanitized=${4:-}
failures=0
fail() { echo "install test: $*" >&2; failures=$((failures + 1)); }

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$cmake" --install "$build" --prefix "$prefix/usr" >/dev/null
program="$prefix/usr/bin/varno-print"
[ -x "$program" ] || { echo "install test: no $program after cmake --install" >&2; exit 1; }

env -u VARNO_BUNDLE_PATH "$build/bin/varno-print" >"$prefix/build.plist"
# A mount namespace of its own, with an empty folder over each tree.
hide="mount -t tmpfs none '$source'"
case "$build/" in "$source"/*) ;; *) hide="$hide && mount -t tmpfs none '$build'" ;; esac
run="$hide && exec env -u VARNO_BUNDLE_PATH '$program'"
if ! unshare --mount sh -c "$run" >"$prefix/installed.plist" 2>"$prefix/installed.err" &&
   ! unshare --mount --map-root-user sh -c "$run" >"$prefix/installed.plist" 2>"$prefix/installed.err"; then
  fail "the installed varno-print failed with the trees hidden: $(cat "$prefix/installed.err")"
fi
cmp -s "$prefix/build.plist" "$prefix/installed.plist" ||
  fail "the installed varno-print printed another ticket than the build tree's"

[ -n "$sanitized" ] ||
for binary in "$program" $(find "$prefix/usr/lib" -type f -name '*.so*') \
              "$(find "$prefix/usr/lib" -path '*VarnoFeatures.plugin/Contents/Linux/*' -type f)"; do
  if strings -a "$binary" | grep -F -e "$source" -e "$build" >/dev/null; then
    fail "$binary holds a path of the source or build tree"
  fi
done

plugin=$(find "$prefix/usr/lib" -path '*VarnoFeatures.plugin/Contents/Linux/VarnoFeatures')
exported=$(nm -D --defined-only "$plugin" | awk '{print $3}' | sort | tr '\n' ' ')
expected="GetAdvancedPanelInterface GetBookletWatermarkPanelInterface GetImageOptionsPanelInterface \
GetJobNotesPanelInterface GetPDEBundle GetPaperOutputPanelInterface GetSpecialPagesPanelInterface \
PDESync VarnoPDEPluginFactory "
[ "$exported" = "$expected" ] || fail "the plug-in exports: $exported"

page="$prefix/usr/share/man/man1/varno-print.1"
MANWIDTH=80 man -l "$page" 2>/dev/null | grep -q "EXIT STATUS" || fail "man -l does not render $page"
for option in $("$program" --help | grep -o -E '(^|[ ,[|])--?[A-Za-z][A-Za-z-]*' | sed 's/^[ ,[|]//' | sort -u); do
  sed 's/\\-/-/g' "$page" | grep -q -e "$option\\b" || fail "the man page does not name $option"
done
[ -f "$prefix/usr/share/bash-completion/completions/varno-print" ] || fail "no bash completion installed"
completion="$prefix/usr/share/bash-completion/completions/varno-print"
complete_words() {  # what the completion offers after the words given
  PATH="$prefix/usr/bin:$PATH" bash -c '. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
    _varno_print; printf "%s\n" "${COMPREPLY[@]}"' sh "$completion" "$@"
}
complete_words varno-print --image-q | grep -qx -e --image-quality || fail "the completion does not offer --image-quality"
complete_words varno-print --image-quality "" | grep -qx HighQuality ||
  fail "the completion does not offer the printer's image qualities"
complete_words varno-print -o Dup | grep -qx Duplex=DuplexTumble || fail "the completion does not offer the PPD's choices for -o"

# The dialog: it runs from the installed tree alone up to its first paint, its menu entry
# names it and its icon, and the help book it opens is in the installed bundle.
dialog="$prefix/usr/bin/varno-print-dialog"
run="$hide && exec env -u VARNO_BUNDLE_PATH VARNO_REPORT_FIRST_PAINT=1 QT_QPA_PLATFORM=offscreen '$dialog' --ppd '$prefix/usr/share/varno/Varno-AT120A.ppd'"
if ! unshare --mount sh -c "$run" 2>"$prefix/dialog.err" &&
   ! unshare --mount --map-root-user sh -c "$run" 2>"$prefix/dialog.err"; then
  fail "the installed varno-print-dialog failed with the trees hidden: $(cat "$prefix/dialog.err")"
fi
grep -q '^first-paint-ns ' "$prefix/dialog.err" || fail "the installed varno-print-dialog never painted"
desktop="$prefix/usr/share/applications/varno-print-dialog.desktop"
grep -qx 'Exec=varno-print-dialog %F' "$desktop" 2>/dev/null || fail "no menu entry that starts varno-print-dialog"
[ -f "$prefix/usr/share/icons/hicolor/scalable/apps/varno-print-dialog.svg" ] || fail "no icon installed"
[ -f "$(dirname "$plugin")/../Resources/en.lproj/Help/index.html" ] || fail "the help book is not in the installed bundle"
dialog_page="$prefix/usr/share/man/man1/varno-print-dialog.1"
MANWIDTH=80 man -l "$dialog_page" 2>/dev/null | grep -q "EXIT STATUS" || fail "man -l does not render $dialog_page"

# The stores' folder, made by systemd-tmpfiles as at boot, in a scratch root that knows
# this machine's users and groups.
mkdir -p "$prefix/root/etc"
cp /etc/passwd /etc/group "$prefix/root/etc/"
if systemd-tmpfiles --create --root="$prefix/root" "$prefix/usr/lib/tmpfiles.d/varno.conf" \
     2>"$prefix/tmpfiles.err"; then
  made=$(stat -c '%a %U %G' "$prefix/root/var/lib/varno/Varno" "$prefix/root/var/lib/varno" | tr '\n' ' ')
  [ "$made" = "2775 root lpadmin 755 root root " ] || fail "tmpfiles made the folders as: $made"
else
  fail "systemd-tmpfiles refused the installed entry: $(cat "$prefix/tmpfiles.err")"
fi

[ "$failures" -eq 0 ] && echo "install test: passed" && exit 0
exit 1
