#!/usr/bin/env bash
# The reference is what kzb prints. up_to_date.sh KZB docs/reference.md
set -euo pipefail
"$1" reference | diff - "$2" || {
    echo "$2 is out of date; make it anew: build/kzb reference > docs/reference.md"
    exit 1
}
