#!/usr/bin/env bash
# Builds the Debian package and reads it: every file an install needs is in
# it under /usr, and it depends on what Nomen links, loads and runs.
#   package_test.sh BUILD_DIR SOURCE_DIR
set -uo pipefail
build=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
package=$(ls "$work"/nomen_*.deb 2>/dev/null | head -n 1)
[[ -n "$package" ]] || { echo "FAIL: no package" >&2; exit 1; }

# Permissions, owner, size, date and time, then the path, which may hold spaces.
files=$(dpkg-deb -c "$package" | sed -E 's/^([^ ]+ +){5}//')
for wanted in ./usr/bin/nomen ./usr/bin/nomen-cli ./usr/bin/nomen-script \
    ./usr/share/nomen/main.js ./usr/share/nomen/MainWindow.ui ./usr/share/nomen/Info.plist \
    ./usr/share/nomen/Scripts/perl.scpt ./usr/share/nomen/translations/ui_de.qm \
    ./usr/share/applications/nomen.desktop ./usr/share/icons/hicolor/scalable/apps/nomen.svg \
    ./usr/share/metainfo/io.nomen.Nomen.metainfo.xml \
    ./usr/share/kio/servicemenus/nomen-rename.desktop ./usr/share/nautilus-python/extensions/nomen-rename.py \
    "./usr/share/nomen/file-managers/Rename with Nomen" \
    ./usr/share/man/man1/nomen-cli.1 ./usr/share/man/man1/nomen-script.1 \
    ./usr/share/bash-completion/completions/nomen-cli ./usr/share/zsh/vendor-completions/_nomen-cli; do
    grep -qxF -- "$wanted" <<<"$files" || fail "the package lacks $wanted"
done
grep -v '^\./usr/' <<<"$files" | grep -v '^\./$' | grep -q . && fail "files outside /usr: $(grep -v '^\./usr/' <<<"$files")"

depends=$(dpkg-deb -f "$package" Depends)
for needed in $("$source/scripts/bootstrap.sh" --runtime | tr , ' ') libqt6core6 libqt6widgets6; do
    grep -qE "(^|, )$needed( |,|$)" <<<"$depends" || fail "Depends lacks $needed: $depends"
done

((failures == 0)) && echo "package $(basename "$package") holds $(wc -l <<<"$files") entries"
exit $((failures > 0))
