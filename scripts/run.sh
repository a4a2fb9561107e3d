#!/usr/bin/env bash
# Sets up, builds and starts the server on the embedded SQLite database with the shipped
# configuration. Extra arguments go to `tidewell serve` (for example --listen 0.0.0.0:8080).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
mkdir -p var
exec build/tidewell serve --config config/tidewell.conf "$@"
