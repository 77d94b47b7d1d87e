# bash completion for nomen-cli and nomen-script

_nomen_cli()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local IFS=$'\n'
    case $previous in
        --rule | --save-rule)
            COMPREPLY=($(compgen -W "$(nomen-cli --list-rules 2>/dev/null)" -- "$current"))
            return ;;
        --case | --ext-case)
            COMPREPLY=($(compgen -W $'UPPERCASE\nlowercase\nTitle Case\nSentence case' -- "$current"))
            return ;;
        --date-source)
            COMPREPLY=($(compgen -W $'none\nnow\ncreated\nmodified' -- "$current"))
            return ;;
        --sort)
            COMPREPLY=($(compgen -W $'name\ndate\nsize\nnone' -- "$current"))
            return ;;
        --map)
            COMPREPLY=($(compgen -f -- "$current"))
            return ;;
        --prefix | --suffix)
            # A token at the end of the text so far.
            if [[ $current == *«* ]]; then
                local before=${current%«*} token
                for token in '«#»' '«ƒ»' '«date ' '«YYYY-MM-DD»' '«make»' '«model»' '«camera»' '«lens»' '«iso»' '«aperture»' \
                    '«exposure»' '«focal»' '«width»' '«height»' '«artist»' '«albumartist»' '«album»' '«title»' '«track»' \
                    '«disc»' '«year»' '«genre»' '«duration»' '«resolution»' '«tag '; do
                    [[ $before$token == "$current"* ]] && COMPREPLY+=("$before$token")
                done
            fi
            return ;;
        --start | --step | --zeros | --search | --replace | --trim-start | --trim-end | \
        --extension | --ext-filter | --type)
            return ;;
    esac
    if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W $'--help\n--help-all\n--prefix\n--suffix\n--start\n--step\n--zeros\n--no-original
--search\n--replace\n--grep\n--ignore-case\n--trim-start\n--trim-end\n--case\n--strip-diacritics\n--extension
--ext-case\n--date-source\n--exif\n--date-taken\n--recursive\n--folders\n--long-names\n--ext-filter\n--type\n--sort\n--rule
--save-rule\n--list-rules\n--map\n--apply\n--undo\n--finish\n--roll-back\n--json' -- "$current"))
        return
    fi
    COMPREPLY=($(compgen -f -- "$current"))
}
complete -o filenames -F _nomen_cli nomen-cli

_nomen_script()
{
    local current=${COMP_WORDS[COMP_CWORD]}
    local IFS=$'\n'
    if ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W '-e' -- "$current") $(compgen -f -X '!*.js' -- "$current") $(compgen -d -- "$current"))
    fi
}
complete -o filenames -F _nomen_script nomen-script
