# offer.bash FILE LINE...: what the completions of FILE offer for the end of each line, and "." after each.
source "$1"
for line in "${@:2}"; do
    IFS=' ' read -ra COMP_WORDS <<<"$line"
    if [[ $line == *' ' ]]; then COMP_WORDS+=(""); fi
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _velhls
    printf '%s\n' "${COMPREPLY[@]}" .
done
