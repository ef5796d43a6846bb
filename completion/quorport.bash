# Completion of quorport for bash; needs the package bash-completion, which loads it.

_quorport_options() {
  local global="--device --port-name --settings --timeout --emulation --log --log-level --json --help"
  case $1 in
    "") echo "$global --version" ;;
    status) echo "$global --level --verbose" ;;
    print) echo "$global --proof --unchecked --end-timeout --hold-print-timeout --receipt --job --journal --again --text --image --width --codepage --ordered --cut --drawer --drawer-after" ;;
    jobs) echo "$global --journal --forget --older-than" ;;
    monitor) echo "$global --interval --count" ;;
    doctor) echo "$global --bundle" ;;
    simulate) echo "$global --listen --set --receipts --per --strict --control" ;;
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

# The keys of a printer's state and of its faults.
_quorport_settings="
  firmware= dip1= dip2= speed= buffer= presenterState= connectedInterface= paper= proofs= lineMode= maker=
  modelName= serialNumber= modelId= typeId= profile= coverOpen= offline= compulsionSwitch= overTemp=
  unrecoverableError= cutterError= mechError= headThermistorError= receiveBufferOverflow=
  pageModeCmdError= paperDetectionError= blackMarkError= jamError= presenterPaperJamError= headUpError=
  voltageError= receiptBlackMarkDetection= receiptPaperEmpty= receiptPaperNearEmptyInner=
  receiptPaperNearEmptyOuter= paperPresent= presenterPaperPresent= peelerPaperPresent= stackerFull=
  slipTOF= slipCOF= slipBOF= validationPaperPresent= slipPaperPresent= etbAvailable= short-writes=
  no-space= late-reply= split-reply= duplicate-reply= drop-reply= corrupt-reply= stray-byte= wrong-id=
  foreign-reply= silence= cut-after-in= cut-after-out= cut= prints-nothing= at= seed=
"

# Offers those of the words that begin as the current one does. A colon or an equals sign at the end of a word
# is followed by its rest.
_quorport_offer() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$cur")
  [[ ${COMPREPLY-} == *[:=] ]] && compopt -o nospace 2> /dev/null
  __ltrim_colon_completions "$cur"
}

_quorport() {
  local commands="find list status online print jobs cancel firmware dipswitch button-security disconnect monitor doctor simulate help"
  local cur prev words cword split command
  # A colon or an equals sign is part of a word here; of --option=value the value is completed.
  _init_completion -s -n := || return
  command=$(_quorport_command "${words[@]:1:cword-1}")
  case $prev in
    -d | --device) _quorport_offer "virtual: tcp: unix: serial: usb: bluetooth:" ;;
    --listen) _quorport_offer "tcp: unix: pty:" ;;
    --set) _quorport_offer "$_quorport_settings" ;;
    --proof) mapfile -t COMPREPLY < <(compgen -W "auto block process-id in-order none" -- "$cur") ;;
    --width) mapfile -t COMPREPLY < <(compgen -W "384 512 576 832" -- "$cur") ;;
    --drawer) mapfile -t COMPREPLY < <(compgen -W "1 2" -- "$cur") ;;
    -e | --emulation) mapfile -t COMPREPLY < <(compgen -W "line escpos unknown" -- "$cur") ;;
    --log | --receipt | --bundle | --journal) _filedir ;;
    --receipts) _filedir -d ;;
    -[pst] | --port-name | --settings | --timeout | --log-level) ;;
    --level | --end-timeout | --hold-print-timeout | --control | --interval | --count | --codepage | --job | --forget | --older-than) ;;
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
