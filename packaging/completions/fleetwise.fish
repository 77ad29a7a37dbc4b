# Completion of fleetwise for fish.

complete -c fleetwise -f
complete -c fleetwise -n __fish_is_first_arg -l dump -d 'Print all sessions'
complete -c fleetwise -n __fish_is_first_arg -l install-hooks -d 'Install the hook for Claude Code'
complete -c fleetwise -n __fish_is_first_arg -l uninstall-hooks -d 'Take the hook out again'
complete -c fleetwise -n __fish_is_first_arg -l selftest -d 'Check the program on this machine'
complete -c fleetwise -n __fish_is_first_arg -l stall-probe -d 'Check that a hanging program is noticed'
complete -c fleetwise -n __fish_is_first_arg -l verify-licence -x -d 'Check a licence'
complete -c fleetwise -n __fish_is_first_arg -l write-iconset -x -a '(__fish_complete_directories)' -d 'Draw the icon in all sizes'
complete -c fleetwise -n __fish_is_first_arg -l write-og-image -r -F -d 'Draw the picture for links'
complete -c fleetwise -n __fish_is_first_arg -l write-dmg-background -r -F -d 'Draw the background of a disk image'
complete -c fleetwise -n __fish_is_first_arg -l check-dmg-background -r -F -d 'Check such a background'
complete -c fleetwise -n __fish_is_first_arg -l dmg-layout -d 'Print the layout of a disk image'
