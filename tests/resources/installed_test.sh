#!/usr/bin/env bash
# Installs the build into a temporary prefix and uses it as a person would:
# the programs find their own resources and translations there, the desktop
# entry is valid, the manuals and completions know every option, and the
# file-manager hand-over gives Nomen whole paths.
#   installed_test.sh BUILD_DIR
set -uo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

prefix=$(realpath "$work")/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null || { echo "FAIL: cmake --install" >&2; exit 1; }
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data PATH=$prefix/bin:$PATH
unset NOMEN_RESOURCES NOMEN_TRANSLATIONS

# Resources: the installed data folder, not the source tree.
help=$(nomen-script -e 'callClassMethod("ROZ_MiscMethods", "returnRTFPath:", ["Help"])' 2>"$work/err")
[[ "$help" == "$prefix/share/nomen/Help.rtf" ]] || fail "resources: \"$help\" $(cat "$work/err")"

# Translations: a German date token works, and stops working when the
# installed German table is replaced by the English one, so the installed
# table is the one read.
mkdir -p "$work/photos" && touch "$work/photos/a.jpg"
german() { LANG=de_DE.UTF-8 LC_ALL= LANGUAGE= nomen-cli --prefix '«JJJJ-MM-TT» ' --date-source modified "$work/photos"; }
german | grep -Eq -- '-> [0-9]{4}-[0-9]{2}-[0-9]{2} a\.jpg' || fail "German table not found: $(german)"
cp "$prefix/share/nomen/translations/ui_en.qm" "$prefix/share/nomen/translations/ui_de.qm"
german | grep -q -- '-> «JJJJ-MM-TT» a.jpg' || fail "the German table came from outside the prefix: $(german)"

desktop-file-validate "$prefix/share/applications/nomen.desktop" || fail "desktop entry"
[[ -z $(desktop-file-validate "$prefix/share/applications/nomen.desktop") ]] || fail "desktop entry hints: one main category"
grep -qx 'Categories=Utility;FileTools;' "$prefix/share/applications/nomen.desktop" || fail "categories"
appstreamcli validate --no-net "$prefix/share/metainfo/io.nomen.Nomen.metainfo.xml" >"$work/appstream" 2>&1 ||
    fail "AppStream metadata: $(cat "$work/appstream")"
grep -qx 'Exec=nomen %F' "$prefix/share/applications/nomen.desktop" || fail "Exec line"

for page in nomen-cli nomen-script; do
    warnings=$(groff -man -ww -z "$prefix/share/man/man1/$page.1" 2>&1)
    [[ -z "$warnings" ]] || fail "$page.1: $warnings"
done

# Every option nomen-cli takes is in its manual and both completions.
options=$(nomen-cli --help | grep -oE '^ +(-h, )?--[a-z-]+' | grep -oE -- '--[a-z-]+')
[[ $(wc -l <<<"$options") -gt 30 ]] || fail "too few options read from --help"
for option in $options; do
    grep -q -- "${option//-/\\\\-}" "$prefix/share/man/man1/nomen-cli.1" || fail "manual lacks $option"
    grep -q -- "$option\\b" "$prefix/share/bash-completion/completions/nomen-cli" || fail "bash completion lacks $option"
    grep -qE -- "$option(\\[|\\})" "$prefix/share/zsh/vendor-completions/_nomen-cli" || fail "zsh completion lacks $option"
done

# bash completion: options, choices with spaces, saved rules by name.
nomen-cli --prefix 'x ' --save-rule 'Trip & Beach' 2>/dev/null || fail "saving a rule"
complete_words() {
    bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _nomen_cli; printf "%s\n" "${COMPREPLY[@]}"' \
        _ "$prefix/share/bash-completion/completions/nomen-cli" "$@"
}
[[ $(complete_words nomen-cli --ca) == "--case" ]] || fail "completing --ca: $(complete_words nomen-cli --ca)"
[[ $(complete_words nomen-cli --case T) == "Title Case" ]] || fail "completing a case: $(complete_words nomen-cli --case T)"
[[ $(complete_words nomen-cli --rule Tr) == "Trip & Beach" ]] || fail "completing a rule: $(complete_words nomen-cli --rule Tr)"

# The GNOME Files script: names relative to the folder shown, however odd,
# reach Nomen whole and absolute.
mkdir -p "$work/shown" && cd "$work/shown" || exit 1
printf '#!/bin/sh\nfor a do printf "%%s|" "$a"; done\n' >"$work/fake-nomen" && chmod +x "$work/fake-nomen"
odd=$'two\nlines'
handed=$(NOMEN="$work/fake-nomen" "$prefix/share/nomen/file-managers/Rename with Nomen" 'a b.jpg' "$odd" '-style' '/abs/x' '$(touch PWN)')
expected="$work/shown/a b.jpg|$work/shown/$odd|$work/shown/-style|/abs/x|$work/shown/\$(touch PWN)|"
[[ "$handed" == "$expected" ]] || fail "file-manager script handed over: $handed"
[[ ! -e PWN ]] || fail "a name was run as a command"
python3 -m py_compile "$prefix/share/nautilus-python/extensions/nomen-rename.py" || fail "GNOME Files extension"
grep -q '^Exec=nomen %F$' "$prefix/share/kio/servicemenus/nomen-rename.desktop" || fail "Dolphin service menu"

((failures == 0)) && echo "installed copy works"
exit $((failures > 0))
