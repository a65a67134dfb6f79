# bash completion of velmora
# shellcheck shell=bash

_velmora() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    compopt -o filenames
    if [[ $previous == --render ]]; then
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
    elif [[ $current == -* ]]; then
        compopt +o filenames
        mapfile -t COMPREPLY < <(compgen -W '--choose --render --version --help' -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}

complete -F _velmora velmora
