# What the scripts that make packages have in common; they source it.

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# read_options ARGUMENT...: sets `build`, to nothing where it is not given, and `output`; goes to the
# root of the sources.
read_options() {
    build='' output=build
    while (($# > 0)); do
        (($# >= 2)) || fail "$1: this takes a folder, and nothing else may be given"
        case $1 in
            --build) build=$(realpath "$2") ;;
            --output) output=$(realpath "$2") ;;
            *) fail "there is no option '$1'" ;;
        esac
        shift 2
    done
    cd "$(dirname "$0")/.."
    output=$(realpath "$output")
}

# The time of the last change, for everything, since the time of packing would be another one each time.
set_time() {
    if [[ -z ${SOURCE_DATE_EPOCH:-} ]]; then
        SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null) || SOURCE_DATE_EPOCH=$(stat -c %Y CMakeLists.txt)
    fi
    export SOURCE_DATE_EPOCH # for the linker, and whatever else changes what is packed
}
