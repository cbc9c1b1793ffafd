#!/usr/bin/env bash
# The command lines in pages, one a line: lines of four spaces and a call of kzb or of an example; one that ends in a
# backslash goes on in the next. commands_of.sh PAGE...
set -euo pipefail
awk '
    FNR == 1 { command = "" }
    command == "" && !/^    ([A-Z]+=[^ ]+ )?(build\/)?(kzb|examples\/scripts\/[a-z_]+) / { next }
    {
        sub(/^    +/, "")
        going_on = sub(/\\$/, "")
        command = command $0
        if (going_on) next
        print command
        command = ""
    }' "$@"
