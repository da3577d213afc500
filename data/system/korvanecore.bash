# Completion for bash: the program itself has the words.
_korvanecore() {
    local words
    words=$("$1" help completion "${COMP_WORDS[1]:-}" 2>/dev/null)
    if [ "$COMP_CWORD" -eq 1 ]; then words=$("$1" help completion 2>/dev/null); fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
    if [[ ${COMPREPLY[0]:-} == *= ]]; then compopt -o nospace; fi
} && complete -F _korvanecore korvanecore
