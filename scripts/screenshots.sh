#!/usr/bin/env bash
# Draws the pictures of docs/screenshots anew.
#   scripts/screenshots.sh BUILD_FOLDER
# The build folder must be configured with the tests; the program that draws is built there.
# On Debian the pictures need fonts-dejavu-core beside the packages of the build.

. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build=${1:?give the build folder, for instance build/dev}
quietly cmake --build "$build" --target keplo_screenshots
mkdir -p docs/screenshots
# One scale and one style, whatever the desktop of the caller says.
quietly env -u QT_FONT_DPI -u QT_STYLE_OVERRIDE -u QT_QPA_PLATFORMTHEME QT_SCALE_FACTOR=1 \
  "$build/bin/keplo_screenshots" docs/screenshots
# The manual is installed by itself, with pictures of its own.
for picture in docs/help/pictures/*.png; do
  cp "docs/screenshots/${picture##*/}" "$picture"
done
say "Drew $(ls docs/screenshots/*.png | wc -l) pictures in docs/screenshots"
