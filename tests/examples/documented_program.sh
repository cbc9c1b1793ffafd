#!/usr/bin/env bash
# The program shown in a document is the example file, to the letter. documented_program.sh DOCUMENT EXAMPLE
set -euo pipefail
diff <(sed -n '/^```c$/,/^```$/{/^```/d;p}' "$1") "$2"
