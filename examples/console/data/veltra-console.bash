# SPDX-License-Identifier: MIT
# Completion of veltra-console for bash. The options come from its own help.
_veltra_console() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} choices=
    case $previous in
        --theme) choices="light dark" ;;
        --bits) choices="float 16 24" ;;
        --rate) choices="44100 48000 88200 96000 192000" ;;
        --block) choices="64 128 256 512 1024 2048" ;;
        --scale) choices="1 2 3 4" ;;
        --size) choices="1180x720 1920x1080" ;;
        --device) choices="auto null" ;;
        *)
            case $word in
                -*) choices=$("$1" --help 2>/dev/null | grep -oE '^  (-[A-Za-z], )?--[a-z-]+' | grep -oE -e '--[a-z-]+') ;;
            esac
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
    # What is no option is a file; readline completes it (-o default).
}
complete -o default -F _veltra_console veltra-console veltra-console-window
