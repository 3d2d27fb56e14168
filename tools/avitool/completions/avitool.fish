# fish completion for avitool
# SPDX-License-Identifier: Apache-2.0

set -l commands info samples seek extract
set -l tracks '__fish_seen_subcommand_from samples extract'
set -l in_any "__fish_seen_subcommand_from $commands"

function __avitool_properties
    for name in extract.log verbose.log disable.audio
        echo vendor.ruvo.avi.$name=1
        echo vendor.ruvo.avi.$name=0
    end
end

# Files whose names end like this regular expression, and folders.
function __avitool_files -a ending
    set -l token (commandline -ct)
    complete -C "__avitool_no_such_command $token" | string match -ri '.*'$ending'$|.*/$'
end

complete -c avitool -f

complete -c avitool -n "not $in_any" -a info -d 'Show formats and sample counts'
complete -c avitool -n "not $in_any" -a samples -d 'Show the samples, a line each'
complete -c avitool -n "not $in_any" -a seek -d 'Show where a seek lands'
complete -c avitool -n "not $in_any" -a extract -d 'Write the tracks to files'
complete -c avitool -n "not $in_any" -l version -d 'Show the version'

complete -c avitool -s h -l help -d 'Show help'
complete -c avitool -l set -x -a '(__avitool_properties)' -d 'Set a system property'
complete -c avitool -l log -x -a 'verbose debug info warn error silent' -d 'Show the log from this level up'
complete -c avitool -l plugin -x -a '(__avitool_files extractor\\.so)' -d 'Load this plug-in'

complete -c avitool -n $in_any -a '(__avitool_files \\.avi)'
complete -c avitool -n $in_any -l json -d 'Print JSON instead of text'
complete -c avitool -n $tracks -l track -x -d 'Only this track, counted from 0'
complete -c avitool -n '__fish_seen_subcommand_from samples' -l limit -x -d 'At most so many samples of each track'
complete -c avitool -n '__fish_seen_subcommand_from seek' -l at -x -d 'The time to seek to, in seconds'
complete -c avitool -n '__fish_seen_subcommand_from seek' -l mode -x -a 'previous next closest-sync closest' -d 'Where to land'
complete -c avitool -n '__fish_seen_subcommand_from extract' -s o -l output -x -a '(__fish_complete_directories)' -d 'The folder to write to'
complete -c avitool -n '__fish_seen_subcommand_from extract' -l force -d 'Replace files that are there, write any amount'
