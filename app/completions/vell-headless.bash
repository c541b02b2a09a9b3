# bash completion for vell-headless; from bash 3.2 on

_vell_headless() {
  local words files=
  case $COMP_CWORD:${COMP_WORDS[1]}:${COMP_WORDS[2]} in
    1:*) words='status stop log service help --fresh --help --version' files=yes ;;
    2:help:*) words='status stop log service' ;;
    3:help:service) words='install remove status' ;;
    *:help:*) words= ;;
    *:status:*) words='--json --help' ;;
    *:stop:*) words='--timeout --help' ;;
    *:log:*) words='--follow --help' ;;
    2:service:*) words='install remove status --help' ;;
    *:service:install) words='--help' files=yes ;;
    *:service:*) words='--help' ;;
    *) words='--fresh --help --version' files=yes ;;
  esac
  COMPREPLY=()
  if [[ -z $files ]]; then
    compopt +o default 2>/dev/null # else bash completes the names of files where no word fits
  elif [[ $COMP_CWORD != 1 && $2 != -* ]]; then
    return
  fi
  COMPREPLY=($(compgen -W "$words" -- "$2"))
}

complete -o default -F _vell_headless vell-headless
