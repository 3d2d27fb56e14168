#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-completions.sh
#
# Has each shell read avitool's completion for it, and mandoc the manual page, for mistakes of
# syntax. What they say is tested by the program endtoend_install.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
completions=tools/avitool/completions
shellcheck --shell=bash "$completions/avitool.bash"
bash -n "$completions/avitool.bash"
zsh -f -n "$completions/_avitool"
fish --no-config -n "$completions/avitool.fish"
mandoc -T lint -W style tools/avitool/avitool.1
echo "check-completions: three shells and mandoc can read them"
