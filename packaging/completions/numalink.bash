# Completion for numalink, numalink-cli and numalink-calculator.

_numalink() {
    local cur prev words cword
    _init_completion || return
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--help --version --trace" -- "$cur")
    else
        _filedir
    fi
}

# The options of each command, and the words that an option's value is one of.
_numalink_cli() {
    local cur prev words cword i command="" part=""
    _init_completion || return
    for ((i = 1; i < cword; i++)); do
        [[ ${words[i]} == -* ]] && continue
        [[ -n $command ]] && part=${words[i]} && break
        command=${words[i]}
    done
    case $prev in
        --to) mapfile -t COMPREPLY < <(compgen -W "cas cat cat-algebra" -- "$cur") && return ;;
        --raster) mapfile -t COMPREPLY < <(compgen -W "image sharp" -- "$cur") && return ;;
        --existing) mapfile -t COMPREPLY < <(compgen -W "keep replace skip" -- "$cur") && return ;;
        --as) mapfile -t COMPREPLY < <(compgen -W "words tokens regex" -- "$cur") && return ;;
        --color) mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$cur") && return ;;
        --text) _filedir -d && return ;;
        --answer) mapfile -t COMPREPLY < <(compgen -W "yes no cancel" -- "$cur") && return ;;
        --type) mapfile -t COMPREPLY < <(compgen -W "cfx algebra" -- "$cur") && return ;;
        --port) mapfile -t COMPREPLY < <(compgen -W "COM1 COM2 COM3 COM4" -- "$cur") && _filedir && return ;;
    esac
    local run="--help --keys --getkey --play --record-keys --set --statements --repeat --plain --paced --json --profile --coverage --trace --break --watch --replace --record --record-zoom --record-statements --keypad --save-moment --moment" options=""
    case $command in
        "") options="--help --version" ;;
        check) options="--help --repair --restore" ;;
        convert) options="--help --to --raster --replace" ;;
        debug) options="--help --set" ;;
        diff) options="--help --json --color" ;;
        duplicates) options="--help --json" ;;
        search) options="--help --as --in --match-case --names --replace-by --apply --json" ;;
        versions) options="--help --show --restore --json" ;;
        export) options="--help --to --each --replace --text" ;;
        import) options="--help --into --existing --replace --keep-both --skip --dry-run --raster --text" ;;
        link) options="--help --port --type --answer --slot --remove-colour --seconds --json --trace" ;;
        list | lint) options="--help --json" ;;
        share) options="--help --out --title --replace" ;;
        show) options="--help --bitmap --replace" ;;
        run | eval) options=$run ;;
        tokens) [[ -n $part ]] && options="--help --typed" || options="--help" ;;
        *) options="--help" ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    elif [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "check convert debug diff duplicates export import language-server link lint list search share show run eval tokens versions write" -- "$cur")
    elif [[ $command == tokens && -z $part ]]; then
        mapfile -t COMPREPLY < <(compgen -W "encode decode" -- "$cur")
    else
        _filedir
    fi
}

_numalink_calculator() {
    local cur prev words cword
    _init_completion || return
    case $prev in
        --type) mapfile -t COMPREPLY < <(compgen -W "cfx algebra" -- "$cur") && return ;;
        --exists) mapfile -t COMPREPLY < <(compgen -W "overwrite skip stop" -- "$cur") && return ;;
        --answer) mapfile -t COMPREPLY < <(compgen -W "take exists refuse" -- "$cur") && return ;;
        --receive) _filedir -d && return ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--help --version --type --send --give --receive --link --exists --answer --noise \
            --drop --double --flip --delay --patience --pause --seed --seconds --paced --silent --once" -- "$cur")
    else
        _filedir
    fi
}

complete -F _numalink numalink
complete -F _numalink_cli numalink-cli
complete -F _numalink_calculator numalink-calculator
