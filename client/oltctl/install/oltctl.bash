# Completion of oltctl for bash: the program itself knows its words.

_oltctl() {
    local line=${COMP_LINE:0:COMP_POINT}
    local word=${line##*[[:blank:]]}
    local IFS=$'\n'
    COMPREPLY=($(oltctl complete -- "${line#*[[:blank:]]}" 2>/dev/null))
    # bash takes what stands behind the last = and : for the word.
    local prefix=${word%"${word##*[=:]}"}
    COMPREPLY=("${COMPREPLY[@]#"$prefix"}")
    [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace
    return 0
}
complete -o default -F _oltctl oltctl
