# bash completion of velmora-scan; the options are those of its --help
# shellcheck shell=bash disable=SC2034,SC2154 # what _init_completion sets

_velmora_scan() {
    local cur prev words cword split
    _init_completion -s || return

    case $prev in
        --speed)
            mapfile -t COMPREPLY < <(compgen -W '1.25 1.5 1.75 2' -- "$cur")
            return
            ;;
        --folders)
            if [[ $split == true ]]; then
                mapfile -t COMPREPLY < <(compgen -W '0 1 2 3' -- "$cur")
                return
            fi
            ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_parse_help "$1")" -- "$cur")
    else
        _filedir
    fi
}

complete -F _velmora_scan velmora-scan
