# shellcheck shell=bash
#
# Sourced at the start of every script: prints the script's head comment for --help and changes to the project root.
script=$(readlink -f "$0")

if [[ ${1-} == --help || ${1-} == -h ]]; then
    sed -n '/^#!/d; /^#/!q; s/^#$//; s/^# //; p' "$script"
    exit 0
fi

refuse() {
    echo "$(basename "$script"): $1; see --help" >&2
    exit 2
}

refuse_arguments() { if (($# != 0)); then refuse "unexpected arguments: $*"; fi; }

is_listed() { [[ " ${*:2} " == *" $1 "* ]]; }

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit
