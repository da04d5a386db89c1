# offer.bash FILE LINE: what the completions of FILE offer for the end of the line.
source "$1"
IFS=' ' read -ra COMP_WORDS <<<"$2"
if [[ $2 == *' ' ]]; then COMP_WORDS+=(""); fi
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_velhls
printf '%s\n' "${COMPREPLY[@]}"
