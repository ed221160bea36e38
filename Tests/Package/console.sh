#!/usr/bin/env bash
# The console works from a place that it was not installed to.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

try_console "$installed"
