# bash completion for avitool                                              -*- shell-script -*-
# SPDX-License-Identifier: Apache-2.0
#
# Needs nothing but bash 4.4: it works with and without the package bash-completion.

# Prints the command on the line, if there is one yet; ${words[@]} is the line up to the cursor, cut
# at each "=" too.
_avitool_command() {
    local i
    for ((i = 1; i < ${#words[@]} - 1; i++)); do
        case ${words[i]} in
            =) ((i++)) ;;  # the value after it
            --set | --log | --plugin) [[ ${words[i + 1]} == = ]] || ((i++)) ;;
            -*) ;;
            *) echo "${words[i]}" && return ;;
        esac
    done
}

# Prints the options that the command takes; without a command those of the tool.
_avitool_options() {
    local common='--help --set --log --plugin'
    case $1 in
        info) echo "$common --json" ;;
        samples) echo "$common --json --track --limit" ;;
        seek) echo "$common --json --at --mode" ;;
        extract) echo "$common --json --output --track --force" ;;
        *) echo "$common --version" ;;
    esac
}

# Fills COMPREPLY with those of the words in $1 that begin like the current one.
_avitool_offer() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$cur")
}

# Fills COMPREPLY with folders, and with files that match the pattern $1 if it is there.
_avitool_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
        compgen -d -- "$cur"
        [[ -z ${1-} ]] || compgen -f -X "!$1" -- "$cur" | while read -r name; do
            [[ -d $name ]] || printf '%s\n' "$name"
        done
    )
}

# A property, or its value after the equals sign.
_avitool_property() {
    local properties='vendor.ruvo.avi.extract.log= vendor.ruvo.avi.verbose.log='
    properties+=' vendor.ruvo.avi.disable.audio='
    compopt -o nospace 2>/dev/null
    _avitool_offer "$properties"
}

# Completes the value of the option $1; fails when that takes none.
_avitool_value() {
    case $1 in
        --set) _avitool_property ;;
        --log) _avitool_offer 'verbose debug info warn error silent' ;;
        --mode) _avitool_offer 'previous next closest-sync closest' ;;
        --plugin) _avitool_files '*extractor.so' ;;
        -o | --output) _avitool_files ;;
        --track | --limit | --at) ;;  # a number, which is the user's to know
        *) return 1 ;;
    esac
}

_avitool() {
    local words=("${COMP_WORDS[@]:0:COMP_CWORD+1}") cur=${COMP_WORDS[COMP_CWORD]}
    local prev=${COMP_WORDS[COMP_CWORD - 1]} command
    COMPREPLY=()
    # The shell cuts words at "=": of --log=warn and --set NAME=VALUE the sign is a word by itself.
    [[ $cur == = ]] && cur='' && words+=('')
    if [[ ${words[-2]} == = ]]; then
        prev=${words[-3]}
        [[ $prev == vendor.* ]] && _avitool_offer '0 1' && return
    fi
    _avitool_value "$prev" && return

    command=$(_avitool_command)
    if [[ $cur == -* ]]; then
        _avitool_offer "$(_avitool_options "$command")"
    elif [[ -z $command ]]; then
        _avitool_offer 'info samples seek extract'
    else
        _avitool_files '*.[aA][vV][iI]'
    fi
}

complete -F _avitool avitool
