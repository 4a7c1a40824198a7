# bash completion of navrel-companion. Files, symbols and types come from a running Navrel.

_navrel_companion() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} line
    COMPREPLY=()
    case $before in
    --wait) return ;;
    map)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
        return
        ;;
    esac
    case $word in
    -*)
        mapfile -t COMPREPLY < <(compgen -W "--json --device --wait --plain --color=auto --color=always --color=never \
            --help --version" -- "$word")
        return
        ;;
    esac
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "map install-extension $(navrel-companion --complete "" 2>/dev/null |
            tr '\n' ' ')" -- "$word")
        return
    fi
    # bash takes colons apart: what stands before the last one is not part of the word to replace.
    line=${COMP_LINE:0:COMP_POINT}
    line=${line#* }
    while IFS= read -r candidate; do
        COMPREPLY+=("$candidate")
    done < <(navrel-companion --complete "$line" 2>/dev/null)
}

complete -F _navrel_companion navrel-companion
