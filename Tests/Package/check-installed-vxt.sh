#!/usr/bin/env bash
# Runs the installed vxt as a user of a prefix would: from a copy of the
# prefix at another place, with no LD_LIBRARY_PATH and no configuration
# override. A configuration added to the copy only must be listed, so the
# configurations come from the copy, not from the source tree or the
# prefix the build was configured for.
# Usage: check-installed-vxt.sh INSTALLED_PREFIX SCRATCH_DIR
set -euo pipefail
installed=$1
moved=$2/moved-prefix
rm -rf "$moved" && mkdir -p "$2"
cp -a "$installed" "$moved"
configurations=$(find "$moved" -type d -path '*/InProc_Vxt/Configurations')
cp "$configurations/TwoSocketServer.json" "$configurations/OnlyInTheMovedPrefix.json"

vxt() { env -u LD_LIBRARY_PATH -u VXT_CONFIGURATIONS_DIR -u VXT_LOG_FILE -u VXT_LOG_LEVEL "$moved/bin/vxt" "$@"; }
fail() { echo "check-installed-vxt: $*" >&2; exit 1; }

listed=$(vxt configs) || fail "vxt configs failed"
grep -qx OnlyInTheMovedPrefix <<<"$listed" || fail "vxt configs does not list the moved prefix's configurations: $listed"

info=$(vxt info --config OnlyInTheMovedPrefix) || fail "vxt info failed"
grep -q '^  0x02000000  Server  (packages: 2, ' <<<"$info" || fail "vxt info does not show the selected target: $info"
echo "check-installed-vxt: the installed vxt runs from $moved"
