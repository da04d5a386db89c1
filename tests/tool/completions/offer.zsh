# offer.zsh FILE LINE...: what the completions of FILE offer for the end of each line, and "." after each, asked of an
# interactive zsh. It needs a terminal: where there is none it exits with 77 and says so.
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
next() { print . >>${(q)offers}; BUFFER=; }
zle -N next
bindkey '^X' next
finish() { print; print FINISHED; exit; }
zle -N finish
bindkey '^Y' finish
print READY
END
if ! zpty shell zsh -f -i 2>/dev/null; then
    rm -f $offers $init
    print -u2 "skipped: zsh completes on terminals alone, and there is none to be had (is /dev/pts mounted?)"
    exit 77
fi
zpty -w shell "source $init"
zpty -r -m shell ignored '*READY*'
for line in "${@[2,-1]}"; do zpty -w -n shell "$line"$'\t\x18'; done
zpty -w -n shell $'\x19'
zpty -r -m shell ignored '*FINISHED*'
cat $offers
rm -f $offers $init
