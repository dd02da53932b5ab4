# Extracts the fenced blocks of a Markdown file, so that they can be compiled and run.
#
#   awk -f extract.awk -v document=NAME -v folder=FOLDER FILE
#
# Writes each block as FOLDER/NN.KIND, numbered from 01, and prints one line for each:
#
#   NN KIND LINE ARGUMENT FILE NOTE      (separated by tabs; "-" where there is nothing)
#
# KIND and ARGUMENT are the words after the opening fence. An HTML comment before a block gives FILE or NOTE:
#
#   <!-- file: NAME -->          the block is also saved as NAME, for the blocks that follow
#   <!-- not run: REASON -->     the block is shown only
#   <!-- native only: REASON --> the block is run only for the machine that builds, without sanitizers
#
# A cpp block without a main() of its own becomes the body of one, in a program that includes the interfaces.

function fail(text) {
    print document ":" FNR ": " text > "/dev/stderr"
    failed = 1
    exit 1
}

function write_program() {
    has_main = text ~ /(^|\n)int main\(/
    if (!has_main) {
        count_of_headers = split("chrono iostream libKel/FileSystem.h libKel/Logging.h libStencilor/Template.h map " \
                                 "memory string thread vector", headers, " ")
        for (header = 1; header <= count_of_headers; ++header) {
            print "#include <" headers[header] ">" > (path)
        }
        print "using namespace kel::Stencilor;\nint main() {" > (path)
    }
    printf "#line %d \"%s\"\n%s", begin + 1, document, text > (path)
    if (!has_main) {
        print "}" > (path)
    }
}

function finish_block() {
    if (kind == "cpp") {
        write_program()
    } else {
        printf "%s", text > (path)
    }
    close(path)
    printf "%s\t%s\t%d\t%s\t%s\t%s\n", number, kind, begin, argument, file, note
    file = note = "-"
}

BEGIN {
    file = note = "-"
}

!inside && /^```/ {
    count++
    number = sprintf("%02d", count)
    begin = FNR
    kind = $0
    sub(/^```+/, "", kind)
    argument = "-"
    if (split(kind, words, " ") > 1) {
        argument = words[2]
    }
    kind = words[1]
    if (kind !~ /^[a-z]+$/) {
        fail("a block must say what it holds")
    }
    path = folder "/" number "." kind
    text = ""
    inside = 1
    next
}

inside && /^```$/ {
    finish_block()
    inside = 0
    next
}

inside {
    text = text $0 "\n"
    next
}

/^<!-- [a-z ]+: .* -->$/ {
    value = $0
    sub(/^<!-- [a-z ]+: /, "", value)
    sub(/ -->$/, "", value)
    if ($2 == "file:") {
        file = value
    } else if ($2 == "not" && $3 == "run:") {
        note = "not run"
    } else if ($2 == "native" && $3 == "only:") {
        note = "native only"
    } else {
        fail("this comment means nothing here")
    }
    next
}

# A comment applies to the block right after it.
!/^$/ && (file != "-" || note != "-") {
    fail("a comment about a block must stand right before it")
}

END {
    if (!failed && inside) {
        fail("the block that begins in line " begin " does not end")
    }
}
