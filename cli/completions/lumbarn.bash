# Completion of the lumbarn command for bash. The command itself tells what can follow.

_lumbarn() {
  local line=${COMP_LINE:0:COMP_POINT} words=() word found prefix name
  read -ra words <<<"$line"
  [[ $line == *' ' ]] && words+=('')
  word=${words[-1]}
  mapfile -t found < <("${words[0]}" __complete "${words[@]:1}" 2>/dev/null)
  COMPREPLY=()
  if [[ ${found[0]} == :files ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
    return
  fi
  # The shell takes what precedes the last colon of a name as a word of its own.
  prefix=
  [[ $word == *:* && $COMP_WORDBREAKS == *:* ]] && prefix=${word%"${word##*:}"}
  for name in "${found[@]}"; do COMPREPLY+=("${name:${#prefix}}"); done
}

complete -F _lumbarn lumbarn
