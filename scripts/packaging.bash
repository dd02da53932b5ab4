# Functions that the packaging scripts share; they source this file.

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# read_options ARGUMENT...: sets `build`, which is empty by default, and `output`, and changes to
# the source root.
read_options() {
    build='' output=build
    while (($# > 0)); do
        (($# >= 2)) || fail "expected --build DIR or --output DIR, not '$*'"
        case $1 in
            --build) build=$(realpath "$2") ;;
            --output) output=$(realpath "$2") ;;
            *) fail "unknown option '$1'" ;;
        esac
        shift 2
    done
    cd "$(dirname "$0")/.."
    output=$(realpath "$output")
}

# The time of the last commit for all files, because the time of packing would differ each time.
set_time() {
    if [[ -z ${SOURCE_DATE_EPOCH:-} ]]; then
        SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null) || SOURCE_DATE_EPOCH=$(stat -c %Y CMakeLists.txt)
    fi
    export SOURCE_DATE_EPOCH # for the linker, and whatever else changes what is packed
}
