# Bash completion of the keplo command.

_keplo() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]:-}
  case $previous in
    --app-path) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --teach | --replay | --out) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    --gproto) mapfile -t COMPREPLY < <(compgen -W 'NEC SONY RC5 Custom' -- "$current"); return ;;
    --protocol) mapfile -t COMPREPLY < <(compgen -W 'NEC SONY RC5' -- "$current"); return ;;
  esac
  local words
  case $COMP_CWORD,$command in
    1,*) words='install decode monitor events commands lookup record learn forget protocols protocol settings send calibrate synth --help --version' ;;
    2,protocol) words='add edit delete --help' ;;
    2,events) words='list add delete enable disable --help' ;;
    *,install) words='--app-path --teach --help' ;;
    *,decode) words='--json --app-path --analysis --sample-time --no-shape --hold --help' ;;
    *,monitor) words='--app-path --replay --json --once --real-time --sample-time --no-shape --hold --help' ;;
    *,events) words='--app-path --json --each --id --name --description --zone --disabled --help' ;;
    *,record) words='--json --app-path --analysis --sample-time --no-shape --hold --help' ;;
    *,learn) words='--protocol --name --app-path --sample-time --no-shape --hold --help' ;;
    2,settings) words='COMPORT PROTOCOL PROCDELAY ITYPE BEEPON VEXIL ANALYSIS --app-path --help' ;;
    *,protocols) words='--json --app-path --help' ;;
    *,protocol) words='--gproto --description --sendpls --repeat --grepeat --bitg --bit0 --bit1 --yes --app-path --help' ;;
    *,send) words='--out --pulse --count --code --protocol --app-path --help' ;;
    *,calibrate) words='--replay --dry-run --app-path --sample-time --no-shape --hold --help' ;;
    *,synth) words='--protocol --code --samples --seed --help' ;;
    *) words='--app-path --help' ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  case $current,$command in
    -*,*) ;;
    *,decode | *,monitor | *,record | *,learn | *,calibrate) mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current") ;;
  esac
}
complete -o filenames -F _keplo keplo
