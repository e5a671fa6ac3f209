#!/usr/bin/env bash
# Builds the project and runs the whole test suite.
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
