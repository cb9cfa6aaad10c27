# What bash offers behind fablegrid-story.
_fablegrid_story()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "show export picture check import diff copies --help --version" \
            -- "$current")
        return
    fi
    local formats='' papers='' files='!*.scene' options="--help"
    case $command in
        show | diff) options+=" --json" ;;
        export)
            formats="md txt html odt pdf opml json csv dot twee" papers="A4 letter"
            options+=" -o --output --format --tab --important --branches --numbers --paper --force"
            ;;
        picture)
            formats="png svg pdf" papers="A0 A1 A2 A3 A4 A5 A6 letter legal tabloid"
            options+=" -o --output --format --tab --story --scale --paper --pages --force"
            ;;
        import)
            formats="md opml json csv twee" files='!*.@(md|markdown|opml|json|csv|twee|tw)'
            options+=" -o --output --format --into --force"
            ;;
        copies) options+=" --restore -o --output --force" ;;
    esac
    case $previous in
        --format) mapfile -t COMPREPLY < <(compgen -W "$formats" -- "$current") && return ;;
        --paper) mapfile -t COMPREPLY < <(compgen -W "$papers" -- "$current") && return ;;
        --tab | --scale | --pages | --restore) return ;;
        --into) files='!*.scene' ;;
        -o | --output)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        *)
            if [[ $current == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
                return
            fi
            [[ $command == copies ]] && return
            ;;
    esac
    compopt -o filenames
    local extended
    extended=$(shopt -p extglob)
    shopt -s extglob
    mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X "$files" -- "$current")
    $extended
}
complete -F _fablegrid_story fablegrid-story
