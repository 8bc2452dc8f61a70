# Bash completion of the keplo command.

# Runs keplo on the folder that the line names; no words without an install.
_keplo_ask() {
  local i path folder=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} == --app-path ]] || continue
    [[ ${COMP_WORDS[i + 1]} == = ]] && ((i++))
    path=$(_keplo_plain "${COMP_WORDS[i + 1]}")
    folder=(--app-path "${path/#\~\//$HOME/}")
  done
  keplo "$@" "${folder[@]}" </dev/null 2>/dev/null
}

# A word of the line without the marks that quote it.
_keplo_plain() {
  printf '%s' "${1//[\\\'\"]/}"
}

_keplo_protocols() { _keplo_ask protocols | cut -f1; }
_keplo_references() { _keplo_ask commands --json | sed -n 's/.*"reference":"\([^"\\]*\)".*/\1/p'; }

# Offers the lines of its input that the word may become. They come from files, so the shell must not expand them.
_keplo_offer() {
  local line
  while IFS= read -r line; do
    [[ $line == "$current"* ]] && COMPREPLY+=("$line")
  done
  compopt -o filenames # quotes the & of a reference
}

# Whether an option takes no value.
_keplo_is_flag() {
  case $1 in
    --json | --no-shape | --presses | --broker | --once | --real-time | --live | --raw | --dry-run | --shadowed | --one-line) ;;
    --each | --force | --disabled | --enable | --disable | --yes | --help | -h | --version) ;;
    *) return 1 ;;
  esac
}

_keplo() {
  local current previous=${COMP_WORDS[COMP_CWORD - 1]} i plain=()
  current=$(_keplo_plain "${COMP_WORDS[COMP_CWORD]}")
  # --option=VALUE comes as three words.
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  # The words ahead without the options and their values.
  for ((i = 1; i < COMP_CWORD; i++)); do
    if [[ ${COMP_WORDS[i]} != -* ]]; then
      plain+=("$(_keplo_plain "${COMP_WORDS[i]}")")
    elif ! _keplo_is_flag "${COMP_WORDS[i]}"; then
      [[ ${COMP_WORDS[i + 1]} == = ]] && ((i++))
      ((i++))
    fi
  done
  local command=${plain[0]:-} action=${plain[1]:-} place=$((${#plain[@]} + 1))
  COMPREPLY=()
  case $previous in
    --app-path) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --teach | --replay | --out | --ca | --certificate | --key | --password-file) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    --format | --to) mapfile -t COMPREPLY < <(compgen -W 'flipper lirc girr keymap esphome tasmota ha smartir irdb mode2 one-line pronto' -- "$current"); return ;;
    --section) _keplo_offer < <(_keplo_protocols); return ;;
    --command) _keplo_offer < <(_keplo_references); return ;;
    --gproto) mapfile -t COMPREPLY < <(compgen -W 'NEC SONY RC5 Custom' -- "$current"); return ;;
    --analysis) mapfile -t COMPREPLY < <(compgen -W 'first second' -- "$current"); return ;;
    --protocol)
      if [[ $command == synth ]]; then
        mapfile -t COMPREPLY < <(compgen -W 'NEC SONY RC5' -- "$current")
      else
        _keplo_offer < <(_keplo_protocols)
      fi
      return ;;
    -*) _keplo_is_flag "$previous" || return ;;
  esac
  local words
  case $place,$command in
    1,*) words='install decode explain monitor events commands lookup record learn forget import export convert protocols protocol settings send calibrate ports zone broker synth help --app-path --help --version' ;;
    2,protocol) words='add edit delete --app-path --help' ;;
    2,events) words='list add modify delete enable disable --app-path --help' ;;
    2,help) words='install decode explain monitor events commands lookup record learn forget import export convert protocols protocol settings send calibrate ports zone broker synth' ;;
    *,install) words='--app-path --teach --help' ;;
    *,decode | *,explain) words='--json --app-path --analysis --sample-time --no-shape --hold --help' ;;
    *,record) words='--live --port --count --json --app-path --analysis --sample-time --no-shape --hold --help' ;;
    *,monitor) words='--app-path --port --replay --json --presses --broker --once --real-time --sample-time --no-shape --hold --help' ;;
    *,events)
      case $action in
        list) words='--json --app-path --help' ;;
        add) words='--each --id --name --description --zone --disabled --force --app-path --help' ;;
        modify) words='--command --name --description --zone --enable --disable --force --app-path --help' ;;
        *) words='--app-path --help' ;;
      esac
      ;;
    *,learn) words='--protocol --name --raw --app-path --sample-time --no-shape --hold --help' ;;
    *,settings)
      words='--json --app-path --help'
      [[ $place == 2 ]] && words+=' COMPORT PROTOCOL PROCDELAY ITYPE BEEPON VEXIL ANALYSIS'
      ;;
    *,import) words='--format --section --keys --dry-run --shadowed --json --app-path --help' ;;
    *,export) words='--format --section --command --out --app-path --help' ;;
    *,convert) words='--to --format --out --help' ;;
    *,protocols) words='--json --app-path --help' ;;
    *,protocol) words='--gproto --description --sendpls --repeat --grepeat --bitg --bit0 --bit1 --yes --app-path --help' ;;
    *,send) words='--out --port --zone --pulse --count --code --protocol --app-path --help' ;;
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
  [[ $place,$command == 2,commands ]] && words+=' rename'
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  case $place,$command,$action in
    2,protocols,* | 3,protocol,edit | 3,protocol,delete) _keplo_offer < <(_keplo_protocols) ;;
    2,send,* | 2,forget,* | 2,commands,*) _keplo_offer < <(_keplo_protocols; _keplo_references) ;;
    3,send,* | 3,forget,*) _keplo_offer < <(_keplo_ask commands "$action" | cut -f2) ;;
    3,commands,rename | 3,events,add) _keplo_offer < <(_keplo_references) ;;
    3,events,modify | 3,events,delete | 3,events,enable | 3,events,disable) _keplo_offer < <(_keplo_ask events list | cut -f1) ;;
  esac
  case $current,$command in
    -*,*) ;;
    *,decode | *,explain | *,monitor | *,record | *,learn | *,calibrate | *,import | *,convert)
      compopt -o filenames
      mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current")
      ;;
  esac
}
complete -F _keplo keplo
