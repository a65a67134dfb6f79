# bash completion of velmora-scan
# shellcheck shell=bash

_velmora_scan() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    compopt -o filenames
    case $previous in
        --speed)
            mapfile -t COMPREPLY < <(compgen -W '1.25 1.5 1.75 2' -- "$current")
            return
            ;;
    esac
    if [[ $current == -* && $previous != --files0-from && $previous != --zip ]]; then
        compopt +o filenames
        mapfile -t COMPREPLY < <(compgen -W '--list --files --folders --folders= --csv --json --speed --files0-from
            --zip --check --quiet --version --verbose --help' -- "$current")
        [[ ${COMPREPLY[*]} != *= ]] || compopt -o nospace
        return
    fi
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

complete -F _velmora_scan velmora-scan
