# complete.zsh COMPLETION [COMMAND]: prints the specifications that the completion gives to zsh at the place of
# the command, or after it, one a line.
_arguments() {
  specifications=("$@")
  state=$place line=($typed)
  return 1
}
_describe() { specifications=(${(P)2}) }
place=${2:+argument} typed=($2) words=(quorport)
: ${place:=command}
source $1
print -rl -- $specifications
