# offer.fish FILE LINE...: what the completions of FILE offer for the end of each line, and "." after each.
source $argv[1]
for line in $argv[2..-1]
    complete -C $line | cut -f1
    echo .
end
