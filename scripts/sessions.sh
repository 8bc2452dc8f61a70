#!/usr/bin/env bash
# Runs the commands of docs/sessions again, with the programs of build/PRESET, and asks of each difference whether
# the page shall say so from now on. Words are pages; all of them without any.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need python3-cram patch
[ $# -gt 0 ] || set -- docs/sessions/*.md
PATH=$root/build/${KEPLO_PRESET:-release}/bin:$PATH KEPLO_HOME=home SAMPLES=$root/samples \
  cram3 --indent=4 --shell=/bin/bash --interactive "$@"
