# Completion of quorport for bash; needs the package bash-completion, which loads it.

_quorport_options() {
  local global="--device --port-name --settings --timeout --emulation --log --log-level --json --help"
  case $1 in
    "") echo "$global --version" ;;
    status) echo "$global --level --verbose" ;;
    print) echo "$global --unchecked --end-timeout --hold-print-timeout --receipt --job --journal --again" ;;
    jobs) echo "$global --journal --forget --older-than" ;;
    monitor) echo "$global --interval --count" ;;
    doctor) echo "$global --bundle" ;;
    simulate) echo "$global --listen --set --receipts --control" ;;
    *) echo "$global" ;;
  esac
}

# The command among the words given: the first that is neither an option nor an option's value.
_quorport_command() {
  local word takes_value=
  for word; do
    case $takes_value$word in
      -[dpste] | --device | --port-name | --settings | --timeout | --emulation | --log | --log-level)
        takes_value=value:
        ;;
      value:*) takes_value= ;;
      -*) ;;
      *)
        echo "$word"
        return
        ;;
    esac
  done
}

_quorport() {
  local commands="list status online print jobs cancel firmware dipswitch button-security disconnect monitor doctor simulate help"
  local cur prev words cword command
  # A colon or an equals sign is part of a word here.
  _init_completion -n := || return
  command=$(_quorport_command "${words[@]:1:cword-1}")
  case $prev in
    -e | --emulation) mapfile -t COMPREPLY < <(compgen -W "line escpos unknown" -- "$cur") ;;
    --log | --receipt | --bundle | --journal) _filedir ;;
    --receipts) _filedir -d ;;
    -[dpst] | --device | --port-name | --settings | --timeout | --log-level) ;;
    --level | --end-timeout | --hold-print-timeout | --listen | --set | --control | --interval | --count | --job | --forget | --older-than) ;;
    *)
      if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_quorport_options "$command")" -- "$cur")
      elif [[ ! $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$cur")
      elif [[ $command == print ]]; then
        _filedir
      fi
      ;;
  esac
}

complete -F _quorport quorport
