# bash completion for halvora(1): commands, options, files, and the panel
# sizes `--native` may take for the EDID already named on the command line.
# Standalone: it needs nothing from the bash-completion package, and runs on
# bash 3.2 (macOS's /bin/bash) as on bash 5.

# shellcheck disable=SC2207 # the words compgen prints hold no spaces; file names split on newlines only
_halvora_words() { COMPREPLY=($(compgen -W "$1" -- "$2")); }
_halvora_files() {
    local IFS=$'\n'
    COMPREPLY=($(compgen -f -- "$1"))
}

_halvora() {
    local cur=${COMP_WORDS[COMP_CWORD]}
    local prev=
    [ "$COMP_CWORD" -gt 0 ] && prev=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]:-}
    COMPREPLY=()

    if [ "$COMP_CWORD" -eq 1 ]; then
        _halvora_words "decode split merge cvt simulate --help --version" "$cur"
        return 0
    fi

    case $prev in
        --native)
            # The EDID is the first word after `split` that is not an option or its value.
            local i word file=
            for ((i = 2; i < COMP_CWORD; i++)); do
                word=${COMP_WORDS[i]}
                case $word in
                    --native | -o | --output) ((i++)) ;;
                    -*) ;;
                    *) file=$word; break ;;
                esac
            done
            if [ -n "$file" ] && [ -r "$file" ]; then
                _halvora_words "$("${COMP_WORDS[0]}" decode --native-sizes "$file" 2>/dev/null)" "$cur"
            fi
            return 0 ;;
        -o | --output | --rig | --settings | --script)
            _halvora_files "$cur"
            return 0 ;;
    esac

    local options=
    case $command in
        decode) options="--json --native-sizes --help" ;;
        split) options="--native -o --output --hex --fix-checksums --accept-extension-count --help" ;;
        merge) options="-o --output --hex --fix-checksums --accept-extension-count --help" ;;
        cvt) options="--json --help" ;;
        simulate) options="--rig --settings --script --strict --safe --help" ;;
        *) return 0 ;;
    esac
    if [[ $cur == -* ]]; then
        _halvora_words "$options" "$cur"
    elif [ "$command" != cvt ] && [ "$command" != simulate ]; then
        _halvora_files "$cur"
    fi
    return 0
}

complete -o filenames -F _halvora halvora
