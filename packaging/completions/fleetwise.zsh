#compdef fleetwise
# Completion of fleetwise for zsh.

local -a switches=(
    '--dump:print all sessions'
    '--install-hooks:install the hook for Claude Code'
    '--uninstall-hooks:take the hook out again'
    '--selftest:check the program on this machine'
    '--stall-probe:check that a hanging program is noticed'
    '--verify-licence:check a licence'
    '--write-iconset:draw the icon in all sizes'
    '--write-og-image:draw the picture for links'
    '--write-dmg-background:draw the background of a disk image'
    '--check-dmg-background:check such a background'
    '--dmg-layout:print the layout of a disk image'
)

if ((CURRENT == 2)); then
    _describe 'switch' switches
elif ((CURRENT == 3)); then
    case $words[2] in
        --write-iconset) _files -/ ;;
        --write-og-image | --write-dmg-background | --check-dmg-background) _files ;;
    esac
fi
