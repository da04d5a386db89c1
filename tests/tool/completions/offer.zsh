# offer.zsh FILE LINE: what the completions of FILE offer for the end of the line, asked of an interactive zsh.
zmodload zsh/zpty
offers=$(mktemp)
init=$(mktemp)
cat >$init <<END
PROMPT=
autoload -U compinit
compinit -D -u
source ${(q)1}
zstyle ':completion:*' completer _complete
zstyle ':completion:*' menu no
# Each call of compadd that offers candidates also writes down those that match.
compadd() {
    if [[ \${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then builtin compadd "\$@"; return; fi
    local -a found
    builtin compadd -A found "\$@"
    (( \$#found )) && print -l -- \$found >>${(q)offers}
    builtin compadd "\$@"
}
list() { _main_complete; }
zle -C list list-choices list
bindkey '^I' list
finish() { print DONE >>${(q)offers}; exit; }
zle -N finish
bindkey '^X' finish
print READY
END
zpty shell zsh -f -i
zpty -w shell "source $init"
zpty -r -m shell ignored '*READY*'
zpty -w -n shell "$2"$'\t'
zpty -w -n shell $'\x18'
for attempt in {1..100}; do
    [[ $(tail -n 1 $offers) == DONE ]] && break
    sleep 0.05
done
grep -v '^DONE$' $offers
rm -f $offers $init
