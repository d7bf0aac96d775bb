#!/bin/sh
# Runs Neovim headless with its built-in LSP client against the tool's server and compares what
# it received with the expectation. Usage: run-neovim.sh TOOL DATA_DIR WORK_DIR
# Exit 77 (skipped) when nvim is missing; VELMOR_UPDATE_GOLDEN=1 rewrites the expectation.
set -eu
tool=$1 data=$2 work=$3
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v nvim >/dev/null 2>&1; then
  echo "skipped: nvim is not installed (scripts/install-deps installs the Debian package neovim)"
  exit 77
fi
rm -rf "$work" && mkdir -p "$work/home"
cp "$data/query.sql" "$work/query.sql"
# A home of its own, so that no user configuration or plugin takes part.
status=0
HOME="$work/home" XDG_CONFIG_HOME="$work/home" XDG_DATA_HOME="$work/home" XDG_STATE_HOME="$work/home" \
  VELMOR_SQL_TOOL="$tool" VELMOR_LSP_FILE="$work/query.sql" VELMOR_LSP_OUT="$work/received.txt" \
  timeout 90 nvim --headless --clean -n -c "luafile $here/neovim.lua" >"$work/nvim.log" 2>&1 </dev/null || status=$?
if [ ! -f "$work/received.txt" ]; then
  echo "nvim wrote nothing (exit $status):"; cat "$work/nvim.log"; exit 1
fi
if [ -n "${VELMOR_UPDATE_GOLDEN:-}" ]; then
  cp "$work/received.txt" "$data/expected.txt"
fi
if ! diff -u "$data/expected.txt" "$work/received.txt"; then
  echo "what Neovim received differs from $data/expected.txt (exit $status)"; cat "$work/nvim.log"; exit 1
fi
[ "$status" -eq 0 ] || { echo "nvim failed (exit $status)"; cat "$work/nvim.log"; exit 1; }
echo "Neovim received what was expected"
