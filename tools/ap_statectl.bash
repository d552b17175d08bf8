# Completion of ap_statectl for bash. The program itself knows its words.
_ap_statectl() {
    mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _ap_statectl ap_statectl
