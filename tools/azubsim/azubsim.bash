# Bash completion for azubsim.

_azubsim() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} words
    # Bash splits "--fault=cut" into three words.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $prev in
        --socket | --forward | --record | --replay | --trace | --scenario | --network)
            # The function of the package bash-completion also handles "~" and quotes.
            if declare -F _filedir >/dev/null; then
                _filedir
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$cur")
            fi
            return
            ;;
        --fault)
            words='error version element missing number cut close-before close-middle split double
                zero silence delay flood reset'
            ;;
        --every | --seed) words= ;;
        *)
            words='--help --version --socket --no-call --network --fault --every --seed --forward --record
                --replay --timed --force --trace --scenario --verbose'
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
}

complete -F _azubsim azubsim
