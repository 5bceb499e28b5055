#!/bin/sh
# Starts an installed Varn in a personal folder, which holds the settings and the book that Varn reads at its start and
# whatever its tools write. The first start fills the folder; what stands in it is the user's own from then on.
set -eu

here=$(dirname "$(readlink -f "$0")")
defaults=$here/../share/games/varn
folder=${VARN_FOLDER:-${XDG_DATA_HOME:-${HOME:?}/.local/share}/varn}

mkdir -p "$folder"
for file in varn.ini book.dat; do
    if [ ! -e "$folder/$file" ]; then cp "$defaults/$file" "$folder/$file"; fi
done
cd "$folder"
exec "$here/../lib/varn/varn"
