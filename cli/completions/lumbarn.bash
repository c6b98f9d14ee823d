# Completion of the lumbarn command for bash.

_lumbarn() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} options='--format -o --output --replace --units --unit-row --long -h --help'
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'info records check vectors summary restart cells stats wells index grid rft init tables compare convert -h --help --version' -- "$word")
    return
  fi
  case $before in
    --format)
      mapfile -t COMPREPLY < <(compgen -W 'table csv json ndjson grdecl' -- "$word")
      return
      ;;
    --vectors | --except | --steps | --test | --branch | --icd | --grid | --array | --step | --nth | --cell | --by | --weight | --date | --from | --to | --every | --table | --number | --show | --occurrence | --range | --abs | --rel | --top)
      return
      ;;
  esac
  case ${COMP_WORDS[1]} in
    restart) options+=' --array --grid --cell --ijk --all --step --nth --steps --date --from --to --every' ;;
    cells) options+=' --array --grid --cell --ijk --all --init --step --nth --steps --date --from --to --every' ;;
    stats) options+=' --array --by --weight --grid --init --steps --date --from --to --every' ;;
    index) options='--into --replace -h --help' ;;
    records) options+=' --stats --show --occurrence --range' ;;
    check) options+=' --values' ;;
    vectors) options+=' --keep-duplicates' ;;
    rft) options+=' --well --steps --date --from --to --every --test --rows --plt --branch --icd --segments --all' ;;
    wells) options+=' --step --steps --date --from --to --every --well --grid --no-connections' ;;
    summary) options+=' --vectors --except --steps --restart --report-steps --dates --keep-duplicates' ;;
    grid) options+=' --grid --corners --vtk --array --step --z-up' ;;
    init) options+=' --array --grid --cell --ijk --all --flags --nnc' ;;
    tables) options+=' --table --number' ;;
    compare) options+=' --abs --rel --array --top --overview' ;;
    convert) options='--formatted --little-endian --array --steps --date --from --to --every -o --output --replace -h --help' ;;
  esac
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}

complete -F _lumbarn lumbarn
