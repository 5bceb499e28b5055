#!/usr/bin/env bash
# End-to-end test of the tool: solve, anneal, check; the check must detect missing, duplicate and wrong boxes.
# Usage: kpk_bitbase_test.sh TOOL
set -euo pipefail
tool=$1
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
cd "$folder"

fail() { echo "$1"; exit 1; }

"$tool"
[[ $(wc -l <kpkbb) == 163328 && $(grep -c $'^[1-8KPk/]* w - - 0 1\t1$' kpkbb) == 124960 ]] || fail "wrong bitbase"
"$tool" anneal 1000000
"$tool" check || fail "correct boxes are refused"

cp wkpk.eb sound
boxes=$(head -n 1 sound | cut -d ' ' -f 1)
# The boxes edited by sed, with this count, must be refused.
refuse() {
    sed "$1; 1s/.*/$2 w/" sound >wkpk.eb
    if "$tool" check; then fail "the check passes after $1"; fi
}
refuse '3d' $((boxes - 1))
refuse '3p' $((boxes + 1))
refuse '3d' "$boxes"
refuse '3s/ 0$/ 1/' "$boxes"
refuse '3s/^[0-9]*/0/' "$boxes"
