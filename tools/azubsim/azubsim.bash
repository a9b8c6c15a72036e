# Bash completion for azubsim.

_azubsim() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} mode=${COMP_WORDS[1]}
    local words='' files=''
    # Bash splits "--fault=cut" into three words.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $prev in
        --socket | --record | --scenario | --network) files=yes ;;
        --fault)
            words='error version element missing number cut close-before close-middle split double
                zero silence delay flood'
            ;;
        --only) words='GetAudioTs SetAudioDelay client all' ;;
        --every | --seed) ;;
        *)
            if ((COMP_CWORD == 1)); then
                words='engine tap replay show trace tell'
                [[ $cur != -* ]] || words='--help --help-all --version'
            elif [[ $cur == -* ]]; then
                words='--help'
                case $mode in
                    engine | tap | replay) words+=' --socket --scenario --quiet' ;;
                    show) words+=' --follow' ;;
                esac
                case $mode in
                    engine | tap) words+=' --fault --every --seed --only --record' ;;
                    replay) words+=' --timed --in-order --repeat' ;;
                esac
                [[ $mode != engine ]] || words+=' --no-call --network'
            elif [[ $mode == tell ]] && ((COMP_CWORD == 3)); then
                words='help status call network jitter slew offset drift freeze fault also every seed only
                    down quiet quit'
            elif [[ $mode != tell || $COMP_CWORD == 2 ]]; then
                files=yes
            fi
            ;;
    esac
    if [[ ! $files ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
    elif declare -F _filedir >/dev/null; then
        # The function of the package bash-completion also handles "~" and quotes.
        _filedir
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    fi
}

complete -F _azubsim azubsim
