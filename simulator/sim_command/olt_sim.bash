# bash completion for olt_sim; installed for bash-completion, or: source olt_sim.bash
_olt_sim() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=""
    local faults peers="system-mgr dhcp-ra pppoe igmp fsm-pon bcm-custom dna ipc-broker"
    case "$previous" in
    olt_sim)
        words="fault clear faults step clock state power add swap move lease session group traffic
            firmware boot reboot watch snapshot load at run
            make-image --json --help --version" ;;
    state) words="summary all ont pon subscribers" ;;
    power) words="ont pon all" ;;
    clock) words="real stepped scaled" ;;
    boot) words="current alternate" ;;
    reboot) words="now" ;;
    watch) words="all olt port ont alarm session group --of --count --json" ;;
    fault | clear)
        # The running simulator knows its kinds best.
        faults=$(olt_sim --json faults 2>/dev/null | sed -n 's/.*"fault":[[:space:]]*"\([a-z0-9_]*\)".*/\1/p')
        words="$faults"
        [ "$previous" = clear ] && words+=" all" ;;
    peer_* | commit_refused) words=$peers ;;
    run | make-image) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
    *)
        case "${COMP_WORDS[1]}" in
        fault) words="value for" ;;
        power) words="on off" ;;
        lease) words="renew drop" ;;
        session) words="drop" ;;
        group) words="join leave release" ;;
        traffic) words="start stop idle evening speed_test" ;;
        add | swap) words="model serial" ;;
        state) words="--json" ;;
        watch) words="--of --count --json" ;;
        esac ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _olt_sim olt_sim
