# complete.bash COMPLETION LINE: prints the completions of bash at the end of LINE, one word a line.
source /usr/share/bash-completion/bash_completion
source "$1"
COMP_LINE=$2
COMP_POINT=${#COMP_LINE}
COMP_TYPE=9
# Words as the shell itself divides them: a colon and an equals sign are words of their own.
mapfile -t COMP_WORDS < <(grep -oE '[^ :=]+|[:=]+' <<<"$COMP_LINE")
[[ $COMP_LINE == *" " ]] && COMP_WORDS+=("")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_quorport quorport "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
((${#COMPREPLY[@]})) && printf '%s\n' "${COMPREPLY[@]}"
exit 0
