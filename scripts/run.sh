#!/usr/bin/env bash
# Installs what is missing, builds Nomen and starts it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/bootstrap.sh
scripts/build.sh build -DNOMEN_BENCH=OFF
exec build/app/nomen "$@"
