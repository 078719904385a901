# SPDX-License-Identifier: MIT
# bash completion for zvisp-line: commands, options, files, known words; after "--", zvisp's own.

# Files of jobs, and the directories on the way to them.
_zvisp_line_jobs() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -X '!*.toml' -- "$1"; compgen -d -- "$1")
}

_zvisp_line() {
  local common='--help --version --json --quiet --progress --color --data'
  local unit='--unit --timeout --wait --plugins --nothing-written --allow-unsigned --expect'
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; ++i)); do
    [[ ${COMP_WORDS[i]} == -- ]] || continue
    declare -F _zvisp >/dev/null || _completion_loader zvisp 2>/dev/null
    COMP_WORDS=(zvisp "${COMP_WORDS[@]:i + 1}")
    COMP_CWORD=$((COMP_CWORD - i))
    declare -F _zvisp >/dev/null && _zvisp
    return
  done
  case $previous in
    --progress | --color)
      mapfile -t COMPREPLY < <(compgen -W 'auto always never' -- "$current")
      return ;;
    --data | --plugins)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return ;;
    --output)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    --unit | --timeout | --wait | --nothing-written | --expect | --ignore | --run | --note | --skip | \
      --place | --name | --pattern) return ;;
  esac
  local words
  case ${COMP_WORDS[1]}-$COMP_CWORD in
    *-1) words='plan run readback batch job check-plugin journal --help --version' ;;
    plan-*) words="$common $unit --" ;;
    run-*) words="$common $unit --readback --ignore --" ;;
    readback-*) words="$common $unit --ignore --" ;;
    batch-*)
      words="$common --check --unit --skip --wait --plugins"
      [[ $current == -* ]] || _zvisp_line_jobs "$current" ;;
    job-2) words='init --help' ;;
    job-*)
      case ${COMP_WORDS[2]} in
        init) words="$common --output --name --pattern --place --timeout --readback --plugins --allow-unsigned --expect --" ;;
      esac ;;
    check-plugin-*)
      words="$common --with-device --timeout"
      if [[ $current != -* ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
      fi ;;
    journal-2) words='show doctor resolve --help' ;;
    journal-*)
      case ${COMP_WORDS[2]} in
        show) words="$common --unit --run" ;;
        doctor) words=$common ;;
        resolve) words="$common --note" ;;
      esac ;;
  esac
  mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _zvisp_line zvisp-line
