# Completes the arguments of quorport in bash. Needs the package bash-completion, which loads this
# file. The completion reads the command's help, and therefore offers exactly the commands, options
# and values that the command accepts.

# Reads a help text and writes its options, one in each line: short form, long form, type of the
# value ("-" if there is none), description.
_quorport_options() {
  awk '
    /^[^ ]/ { isOption = /^Options:/ }
    isOption && match($0, /^  (-.,)?--[a-z-]+/) {
      names = substr($0, 3, RLENGTH - 2)
      rest = substr($0, RLENGTH + 1)
      type = match(rest, /^ [^ ]*[^ :]( |$)/) ? substr(rest, 2, RLENGTH - 1) : "-"
      sub(/ $/, "", type)
      print (names ~ /,/ ? substr(names, 1, 2) : "-"), substr(names, index(names, "--")), type, rest
    }'
}

# Writes the values of an option with type $1 and description $2, if the help lists them.
_quorport_values() {
  case $1 in
    *"|"*) echo "${1//|/ }" ;;
    *) grep -oE '([a-z0-9-]+, )+[a-z0-9-]+ or [a-z0-9-]+' <<< "$2" | head -1 | sed 's/,//g; s/ or / /' ;;
  esac
}

# Writes the command among the given words: the first that is neither an option nor an option's
# value. $1 is the program's general help.
_quorport_command() {
  local word takes_value= with_value
  with_value=" $(_quorport_options <<< "$1" | awk '$3 != "-" { print $1, $2 }' | tr '\n' ' ')"
  shift
  for word; do
    if [[ $takes_value ]]; then
      takes_value=
    elif [[ $word != -* ]]; then
      echo "$word"
      return
    elif [[ $with_value == *" $word "* ]]; then
      takes_value=yes
    fi
  done
}

# The keys of a printer's settings and faults.
_quorport_settings="
  firmware= dip1= dip2= speed= buffer= flow= presenterState= connectedInterface= paper= proofs= lineMode=
  lacks= codePages= multiByte= utf8= maker=
  modelName= serialNumber= modelId= typeId= profile= coverOpen= offline= compulsionSwitch= overTemp=
  unrecoverableError= cutterError= mechError= headThermistorError= receiveBufferOverflow=
  pageModeCmdError= paperDetectionError= blackMarkError= jamError= presenterPaperJamError= headUpError=
  voltageError= receiptBlackMarkDetection= receiptPaperEmpty= receiptPaperNearEmptyInner=
  receiptPaperNearEmptyOuter= paperPresent= presenterPaperPresent= peelerPaperPresent= stackerFull=
  slipTOF= slipCOF= slipBOF= validationPaperPresent= slipPaperPresent= etbAvailable= short-writes=
  no-space= late-reply= split-reply= duplicate-reply= drop-reply= corrupt-reply= stray-byte= wrong-id=
  foreign-reply= silence= cut-after-in= cut-after-out= cut= prints-nothing= at= seed=
"

# Offers the words in $1 that begin with the current word. If a word ends in a colon or an equals
# sign, no blank is added, because the rest of the argument follows it.
_quorport_offer() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$cur")
  [[ ${COMPREPLY-} == *[:=] ]] && compopt -o nospace 2> /dev/null
  __ltrim_colon_completions "$cur"
}

_quorport() {
  local cur prev words cword split command general own short long type text
  # A colon or an equals sign is part of a word here, and in --option=value the value is completed.
  _init_completion -s -n := || return
  general=$("$1" --help 2> /dev/null)
  command=$(_quorport_command "$general" "${words[@]:1:cword-1}")
  own=$([[ ! $command ]] || "$1" "$command" --help 2> /dev/null)
  while read -r short long type text; do
    [[ $prev == "$short" || $prev == "$long" ]] && [[ $type != - ]] || continue
    case $type in
      FILE*) _filedir ;;
      FOLDER) _filedir -d ;;
      KEY=VALUE) _quorport_offer "$_quorport_settings" ;;
      SPEC)
        if [[ $long == --device ]]; then
          _quorport_offer "$(sed -n '/^A SPEC is/,/^Every/s/^  \([a-z]*:\).*/\1/p' <<< "$general" | sort -u)"
        else
          _quorport_offer "$(grep -oE '\b[a-z]+:' <<< "$text" | awk '!seen[$0]++')"
        fi
        ;;
      *) _quorport_offer "$(_quorport_values "$type" "$text")" ;;
    esac
    return
  done < <(_quorport_options <<< "$general"$'\n'"$own")
  if [[ $cur == -* ]]; then
    _quorport_offer "$(_quorport_options <<< "$general"$'\n'"$own" | awk -v isCommand="$command" \
      '!seen[$2]++ && (isCommand == "" || $2 != "--version") { print $2 }')"
  elif [[ ! $command ]]; then
    _quorport_offer "$(awk '/^[^ ]/ { isCommand = /^Commands:/; next } isCommand { print $1 }' <<< "$general")"
  elif [[ $own == *"[OPTIONS] FILE"* ]]; then
    _filedir
  fi
}

complete -F _quorport quorport
