# SPDX-License-Identifier: MIT
# fish completion for zvisp-line: commands, options, files, known words; after "--", zvisp's own.

function __zvisp_line_uses
    set -l words (commandline -opc)
    contains -- -- $words; and return 1
    contains -- "$words[2]" $argv; or contains -- "$words[2]-$words[3]" $argv
end

function __zvisp_line_begins
    test (count (commandline -opc)) -eq $argv[1]; or return 1
    test $argv[1] -eq 1; or test (commandline -opc)[2] = $argv[2]
end

function __zvisp_line_after_dashes
    contains -- -- (commandline -opc)
end

function __zvisp_line_words
    set -l words (commandline -opc)
    set -l dashes (contains -i -- -- $words)
    set -l zvisp zvisp
    test $dashes -lt (count $words); and set -a zvisp $words[(math $dashes + 1)..-1]
    complete -C "$zvisp "(commandline -ct)
end

set -g __zvisp_line_all plan run readback batch job-init check-plugin journal-show journal-doctor journal-resolve

complete -c zvisp-line -f
complete -c zvisp-line -n '__zvisp_line_after_dashes' -a '(__zvisp_line_words)'
complete -c zvisp-line -n '__zvisp_line_begins 1' -a 'plan run readback batch job check-plugin journal'
complete -c zvisp-line -n '__zvisp_line_begins 2 job' -a 'init'
complete -c zvisp-line -n '__zvisp_line_begins 2 journal' -a 'show doctor resolve'
complete -c zvisp-line -n '__zvisp_line_uses $__zvisp_line_all' -l help -d 'print the options'
complete -c zvisp-line -n '__zvisp_line_uses $__zvisp_line_all' -l version -d 'print the version'
complete -c zvisp-line -n '__zvisp_line_uses $__zvisp_line_all' -l json -d 'report by JSON Lines'
complete -c zvisp-line -n '__zvisp_line_uses $__zvisp_line_all' -l quiet -d 'print nothing but errors'
complete -c zvisp-line -n '__zvisp_line_uses $__zvisp_line_all' -l progress -x -a 'auto always never' -d 'show progress'
complete -c zvisp-line -n '__zvisp_line_uses $__zvisp_line_all' -l color -x -a 'auto always never' -d 'use colours'
complete -c zvisp-line -n '__zvisp_line_uses $__zvisp_line_all' -l data -x -a '(__fish_complete_directories)' -d 'directory of the record'
complete -c zvisp-line -n '__zvisp_line_uses plan run readback' -l unit -x -d 'serial of the display'
complete -c zvisp-line -n '__zvisp_line_uses plan run readback' -l timeout -x -d 'end the run after so long'
complete -c zvisp-line -n '__zvisp_line_uses plan run readback' -l wait -x -d 'wait so long for an interface'
complete -c zvisp-line -n '__zvisp_line_uses plan run readback' -l plugins -x -a '(__fish_complete_directories)' -d 'directory of the plug-ins'
complete -c zvisp-line -n '__zvisp_line_uses plan run readback' -l nothing-written -x -d 'codes that promise that nothing was written'
complete -c zvisp-line -n '__zvisp_line_uses plan run readback job-init' -l allow-unsigned -d 'program files that no signature covers'
complete -c zvisp-line -n '__zvisp_line_uses plan run readback job-init' -l expect -x -d 'scaler type that is right'
complete -c zvisp-line -n '__zvisp_line_uses run' -l readback -d 'read back and compare'
complete -c zvisp-line -n '__zvisp_line_uses run readback' -l ignore -x -d 'leave these addresses out'
complete -c zvisp-line -n '__zvisp_line_uses batch' -k -a '(__fish_complete_suffix .toml)'
complete -c zvisp-line -n '__zvisp_line_uses batch' -l check -d 'judge the job'
complete -c zvisp-line -n '__zvisp_line_uses batch' -l unit -x -d 'serial at a place'
complete -c zvisp-line -n '__zvisp_line_uses batch' -l skip -x -d 'leave a place out'
complete -c zvisp-line -n '__zvisp_line_uses batch' -l wait -x -d 'wait so long for an interface'
complete -c zvisp-line -n '__zvisp_line_uses batch job-init' -l plugins -x -a '(__fish_complete_directories)' -d 'directory of the plug-ins'
complete -c zvisp-line -n '__zvisp_line_uses job-init' -l output -r -F -d 'new file'
complete -c zvisp-line -n '__zvisp_line_uses job-init' -l name -x -d 'name of the job'
complete -c zvisp-line -n '__zvisp_line_uses job-init' -l pattern -x -d 'what a serial looks like'
complete -c zvisp-line -n '__zvisp_line_uses job-init' -l place -x -d 'a place and its interface'
complete -c zvisp-line -n '__zvisp_line_uses job-init' -l timeout -x -d 'end the step after so long'
complete -c zvisp-line -n '__zvisp_line_uses job-init' -l readback -d 'read back and compare'
complete -c zvisp-line -n '__zvisp_line_uses check-plugin' -F
complete -c zvisp-line -n '__zvisp_line_uses check-plugin' -l with-device -d 'a display may be written'
complete -c zvisp-line -n '__zvisp_line_uses check-plugin' -l timeout -x -d 'end a check after so long'
complete -c zvisp-line -n '__zvisp_line_uses journal-show' -l unit -x -d 'only this display'
complete -c zvisp-line -n '__zvisp_line_uses journal-show' -l run -x -d 'only this run'
complete -c zvisp-line -n '__zvisp_line_uses journal-resolve' -l note -x -d 'why it is clear'
