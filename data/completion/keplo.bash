# Bash completion of the keplo command.

# Runs keplo on the folder that the line names; no words without an install.
_keplo_ask() {
  local i folder=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} == --app-path ]] && folder=(--app-path "${COMP_WORDS[i + 1]}")
  done
  keplo "$@" "${folder[@]}" 2>/dev/null
}

_keplo() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local first=1
  [[ ${COMP_WORDS[1]:-} == --app-path ]] && first=3
  local command=${COMP_WORDS[first]:-} action=${COMP_WORDS[first + 1]:-}
  local place=$((COMP_CWORD - first + 1))
  case $previous in
    --app-path) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --teach | --replay | --out | --ca | --certificate | --key | --password-file) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    --format | --to) mapfile -t COMPREPLY < <(compgen -W 'flipper lirc girr keymap esphome tasmota ha smartir irdb mode2 one-line pronto' -- "$current"); return ;;
    --section) mapfile -t COMPREPLY < <(compgen -W "$(_keplo_ask protocols | cut -f1)" -- "$current"); return ;;
    --gproto) mapfile -t COMPREPLY < <(compgen -W 'NEC SONY RC5 Custom' -- "$current"); return ;;
    --analysis) mapfile -t COMPREPLY < <(compgen -W 'first second' -- "$current"); return ;;
    --protocol)
      [[ $command == synth ]] && local names='NEC SONY RC5' || local names=$(_keplo_ask protocols | cut -f1)
      mapfile -t COMPREPLY < <(compgen -W "$names" -- "$current"); return ;;
  esac
  local words names=
  case $place,$command in
    1,*) words='install decode monitor events commands lookup record learn forget import export convert protocols protocol settings send calibrate ports zone broker synth help --app-path --help --version' ;;
    2,protocol) words='add edit delete --app-path --help' ;;
    2,events) words='list add modify delete enable disable --app-path --help' ;;
    2,help) words='install decode monitor events commands lookup record learn forget import export convert protocols protocol settings send calibrate ports zone broker synth' ;;
    *,install) words='--app-path --teach --help' ;;
    *,decode) words='--json --app-path --analysis --sample-time --no-shape --hold --help' ;;
    *,record) words='--live --port --count --json --app-path --analysis --sample-time --no-shape --hold --help' ;;
    *,monitor) words='--app-path --port --replay --json --presses --once --real-time --sample-time --no-shape --hold --help' ;;
    *,events)
      case $action in
        list) words='--json --app-path --help' ;;
        add) words='--each --id --name --description --zone --disabled --force --app-path --help' ;;
        modify) words='--command --name --description --zone --enable --disable --force --app-path --help' ;;
        *) words='--app-path --help' ;;
      esac
      [[ $place == 3 && $action != add && $action != list ]] && names=$(_keplo_ask events list | cut -f1)
      ;;
    *,learn) words='--protocol --name --raw --app-path --sample-time --no-shape --hold --help' ;;
    *,settings)
      words='--json --app-path --help'
      [[ $place == 2 ]] && names='COMPORT PROTOCOL PROCDELAY ITYPE BEEPON VEXIL ANALYSIS'
      ;;
    *,import) words='--format --section --keys --dry-run --shadowed --json --app-path --help' ;;
    *,export) words='--format --section --command --out --app-path --help' ;;
    *,convert) words='--to --format --out --help' ;;
    *,protocols) words='--json --app-path --help' ;;
    *,protocol) words='--gproto --description --sendpls --repeat --grepeat --bitg --bit0 --bit1 --yes --app-path --help' ;;
    *,send) words='--out --port --pulse --count --code --protocol --app-path --help' ;;
    *,commands) words='--json --app-path --help' ;;
    *,ports) words='--json --watch --app-path --help' ;;
    2,broker) words='set show check forget --help' ;;
    *,broker)
      case $action in
        set) words='--host --port --tls --ca --certificate --key --user --password-file --client-id --prefix --discovery-prefix --signals --send --app-path --help' ;;
        *) words='--json --app-path --help' ;;
      esac
      ;;
    *,zone) words='1 2 3 4 5 6 7 8 --port --app-path --help' ;;
    *,calibrate) words='--port --replay --dry-run --app-path --sample-time --no-shape --hold --help' ;;
    *,synth) words='--protocol --code --mark-excess --jitter --clock-error --gap --repeats --seed --one-line --samples --help' ;;
    *) words='--app-path --help' ;;
  esac
  case $place,$command in
    2,protocols | 2,send | 2,forget) names=$(_keplo_ask protocols | cut -f1) ;;
    2,commands) names="rename $(_keplo_ask protocols | cut -f1)" ;;
    3,protocol) [[ $action != add ]] && names=$(_keplo_ask protocols | cut -f1) ;;
    3,send | 3,forget) names=$(_keplo_ask commands "$action" | cut -f2) ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words $names" -- "$current")
  case $current,$command in
    -*,*) ;;
    *,decode | *,monitor | *,record | *,learn | *,calibrate | *,import | *,convert) mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current") ;;
  esac
}
complete -o filenames -F _keplo keplo
