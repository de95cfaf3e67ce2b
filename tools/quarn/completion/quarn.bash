# Completion of quarn for bash: commands, options, files.
_quarn()
{
    local current=${COMP_WORDS[COMP_CWORD]} word command='' words=()
    COMPREPLY=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in
        -*) ;;
        *)
            command+=${command:+ }$word
            case $command in
            settings | registry | record) ;;
            *) break ;;
            esac
            ;;
        esac
    done
    case $command in
    '') words=(settings registry record crc version units log --help --version) ;;
    settings) words=(show get set unset diff check backup restore --help) ;;
    registry) words=(show export import --help) ;;
    record) words=(show --help) ;;
    'settings set') words=(--type --json --help) ;;
    'record show') words=(--header --from --bytes --json --help) ;;
    log) words=(--lines --no-follow --end-after --json --help) ;;
    *) words=(--json --help) ;;
    esac
    if [[ $command == 'settings set' && ${COMP_WORDS[COMP_CWORD - 1]} == --type ]]; then
        words=(string int32 binary)
    elif [[ $command == ?* && $command != settings && $command != registry && $command != record &&
        $current != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
        return
    fi
    mapfile -t COMPREPLY < <(compgen -W "${words[*]}" -- "$current")
}
complete -F _quarn quarn
