#!/usr/bin/env bash
# Completes command lines in a shell itself. completion_test.sh KZB SHELL
set -euo pipefail
kzb=$(realpath "$1")
shell=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export HOME=$folder XDG_CONFIG_HOME=$folder XDG_DATA_HOME=$folder
"$kzb" completion "$shell" >script

# The choices for a command line, a line each; its last word is the one being written.
choices() {
    case $shell in
    bash)
        bash --norc -c '
            source ./script
            compopt() { :; }
            line=$1
            # As bash splits words at the characters of COMP_WORDBREAKS.
            line=${line//=/ = }
            read -ra COMP_WORDS <<<"${line//@/ @ }"
            COMP_LINE=$1
            COMP_POINT=${#COMP_LINE}
            [[ $1 == *" " ]] && COMP_WORDS+=("")
            COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
            _kzb
            ((${#COMPREPLY[@]})) && printf "%s\n" "${COMPREPLY[@]}"
            exit 0' bash "$1"
        ;;
    zsh)
        # compadd and _files exist only while a line is completed.
        zsh -f -c '
            compdef() { :; }
            compadd() {
                local prefix=""
                while [[ $1 == -* && $1 != -- ]]; do
                    [[ $1 == -P ]] && prefix=$2
                    shift 2
                done
                [[ $1 == -- ]] && shift
                local candidate
                for candidate; do
                    [[ ${(L)prefix}${(L)candidate} == ${(L)words[CURRENT]}* ]] && print -r -- $prefix$candidate
                done
            }
            _files() { print files; }
            source ./script
            words=(${=1})
            [[ $1 == *" " ]] && words+=("")
            CURRENT=$#words
            _kzb' zsh "$1"
        ;;
    fish) fish --no-config -c 'source ./script; complete -C $argv[1] | string replace -r "\t.*" ""' -- "$1" ;;
    esac
}

failed=0
# offers LINE CHOICE...: the choices hold these
offers() {
    local line=$1 got
    shift
    got=$(choices "$line") || true # finding none is no failure
    for choice; do
        grep -qxF -e "$choice" <<<"$got" || {
            echo "'$line' does not offer $choice but: $got"
            failed=1
        }
    done
}
# exactly LINE CHOICE...: the choices are these
exactly() {
    local line=$1 got
    shift
    got=$(choices "$line" | sort) || true
    [[ $got == "$(printf '%s\n' "$@" | sort)" ]] || {
        echo "'$line' offers: $got"
        failed=1
    }
}

exactly 'kzb photo.jpg : Gamma' GammaFilter
exactly 'kzb photo.jpg : gam' GammaFilter
exactly 'kzb photo.jpg : HMirror : BoxBlurFr' BoxBlurFractionalFilter
offers 'kzb photo.jpg : ' GammaFilter Scale Rotate CopyMask
offers 'kzb photo.jpg : GainFilter ' gain= bias=
offers 'kzb photo.jpg : Scale ' ScaleLanczos3 ScaleBox mode= width=
exactly 'kzb photo.jpg : DitherFilter DitherCl' DitherCluster3Matrix DitherCluster4Matrix DitherCluster8Matrix
if [[ $shell == bash ]]; then # which offers what follows the '='
    exactly 'kzb photo.jpg : Scale mode=ScaleLa' ScaleLanczos3 ScaleLanczos8
else
    exactly 'kzb photo.jpg : Scale mode=ScaleLa' mode=ScaleLanczos3 mode=ScaleLanczos8
fi
offers 'kzb photo.jpg : Invert --ou' --output
offers 'kzb photo.jpg --max' --max-pixels
offers 'kzb he' help
exactly 'kzb help Solar' SolarizeFilter
# What was kept under a name.
offers 'kzb photo.jpg : =sharp : BoxBlurFilter 2 : =soft : @sharp : UnsharpFilter ' @sharp @soft Amount=
if [[ $shell == bash ]]; then
    exactly 'kzb photo.jpg : =sharp : BoxBlurFilter 2 : =soft : @sh' sharp
else
    exactly 'kzb photo.jpg : =sharp : BoxBlurFilter 2 : =soft : @sh' @sharp
fi
exactly 'kzb completion f' fish
exactly 'kzb photo.jpg : rawr' RawRow
# Constants belong to their methods.
exactly 'kzb photo.jpg : GainFilter Scale'
exit "$failed"
