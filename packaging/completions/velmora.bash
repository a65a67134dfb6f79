# bash completion of velmora; the options are those of its --help
# shellcheck shell=bash disable=SC2034,SC2154 # what _init_completion sets

_velmora() {
    local cur prev words cword
    _init_completion || return

    if [[ $prev == --render ]]; then
        _filedir -d
    elif [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_parse_help "$1")" -- "$cur")
    else
        _filedir
    fi
}

complete -F _velmora velmora
