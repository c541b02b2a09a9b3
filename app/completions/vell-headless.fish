# fish completion for vell-headless

function __vell_headless_command
    set -l words (commandline -opc)
    test "$words[2..]" = "$argv"
end

function __vell_headless_takes_no_files
    set -l words (commandline -opc)
    contains -- "$words[2]" status stop log help; or begin
        test "$words[2]" = service; and test "$words[3]" != install
    end
end

complete -c vell-headless -n __vell_headless_takes_no_files -f
complete -c vell-headless -s h -l help -d 'Show help'
complete -c vell-headless -n __fish_use_subcommand -l version -d 'Show the version'
complete -c vell-headless -n __fish_use_subcommand -l fresh -d 'Leave closed what was open when it last ended'
complete -c vell-headless -n __fish_use_subcommand -a status -d 'Tell what is served'
complete -c vell-headless -n __fish_use_subcommand -a stop -d 'End it when everything is saved'
complete -c vell-headless -n __fish_use_subcommand -a log -d 'Print the log'
complete -c vell-headless -n __fish_use_subcommand -a service -d 'Run it from login on'
complete -c vell-headless -n __fish_use_subcommand -a help -d 'Show help, of a command too'
complete -c vell-headless -n '__vell_headless_command help' -a 'status stop log service'
complete -c vell-headless -n '__vell_headless_command status' -l json -d 'As one line of JSON'
complete -c vell-headless -n '__vell_headless_command stop' -x -l timeout -d 'How long to wait, in seconds'
complete -c vell-headless -n '__vell_headless_command log' -s f -l follow -d 'Go on with what is logged from now on'
complete -c vell-headless -n '__vell_headless_command service' -f -a install -d 'Write its file'
complete -c vell-headless -n '__vell_headless_command service' -f -a remove -d 'End it and remove its file'
complete -c vell-headless -n '__vell_headless_command service' -f -a status -d 'Tell whether it is installed'
