# shellcheck shell=bash
#
# What every script begins with: it sources this file, which prints the comment at the script's head when asked for
# help, and goes to the project's root.
script=$(readlink -f "$0")

if [[ ${1-} == --help || ${1-} == -h ]]; then
    sed -n '/^#!/d; /^#/!q; s/^#$//; s/^# //; p' "$script"
    exit 0
fi

refuse() {
    echo "$(basename "$script"): $1; --help tells its use" >&2
    exit 2
}

refuse_arguments() { if (($# != 0)); then refuse "it takes no arguments, and was given $*"; fi; }

is_listed() { [[ " ${*:2} " == *" $1 "* ]]; }

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit
