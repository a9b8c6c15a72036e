# Bash completion for lipsyncctl.

_lipsyncctl() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} words='' command='' i
    # Bash splits "--format=json" into three words.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $prev in
        -s | --socket)
            # The function of the package bash-completion also handles "~" and quotes.
            if declare -F _filedir >/dev/null; then
                _filedir
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$cur")
            fi
            return
            ;;
        --format) words='text json csv' ;;
        --timeout | --wait | --interval | --count | --max-time) ;;
        *)
            # The words of the command before the cursor, without options and their values.
            for ((i = 1; i < COMP_CWORD; i++)); do
                case ${COMP_WORDS[i]} in
                    -s | --socket | --format | --timeout | --wait | --interval | --count | --max-time)
                        [[ ${COMP_WORDS[i + 1]} != = ]] || ((++i))
                        ((++i))
                        ;;
                    [!-]*) command+="${COMP_WORDS[i]} " ;;
                esac
            done
            case $command in
                '') words='capabilities margin timestamps ping' ;;
                'margin ') words='set' ;;
                'margin set ') words='0 20 40 60 80 100' ;;
            esac
            if [[ ! $words || $cur == -* ]]; then
                words='--help --version --socket --format --timeout --wait --log'
                [[ $command ]] || words+=' --help-all'
                case $command in
                    'timestamps ') words+=' --watch --interval --count --max-time' ;;
                    'ping ') words+=' --count' ;;
                esac
            fi
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
}

complete -F _lipsyncctl lipsyncctl
