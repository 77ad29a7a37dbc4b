# Completion of fleetwise for bash.

_fleetwise()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W '
            --dump --install-hooks --uninstall-hooks --selftest --stall-probe --verify-licence
            --write-iconset --write-og-image --write-dmg-background --check-dmg-background
            --dmg-layout' -- "$word")
    elif ((COMP_CWORD == 2)); then
        compopt -o filenames
        case $previous in
            --write-iconset) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
            --write-og-image | --write-dmg-background | --check-dmg-background)
                mapfile -t COMPREPLY < <(compgen -f -- "$word")
                ;;
        esac
    fi
} &&
    complete -F _fleetwise fleetwise
