#ifndef TOOLS_STENCILOR_COMMANDNOTES_H
#define TOOLS_STENCILOR_COMMANDNOTES_H

// What the help of each command ends with. A line that ends in a colon heads the lines below it;
// the manual page shows those that begin with two spaces as they are.

namespace stencilor {

inline constexpr const char* renderNotes =
    R"(CONTEXT is a JSON text whose outermost value is an object. Strings and numbers
become strings (numbers as they are written), true and false booleans, arrays
lists, objects dictionaries, null a null entry. A member of a nested object also
has its dotted name ("user.name"), unless there is a member of that very name.
An element of an array that is no object is the name "value" of that element.
An object with the member "$boolean": true or false is a boolean, and its other
members are what the block has as its innermost names.

Messages are on stderr, each with its file, line and column, in included files,
too; each place is reported once. A limit of 0 is none; numbers may end in K, M
or G. Without options the limits are 100000000 steps, 1G of output, 256M of
templates, and a depth of 100.

Exit status:
  0  rendered without a message
  1  rendered with gaps, or from damaged bytes, which are warnings; with --strict
     they are errors, and nothing is written
  2  a wrong call, a file that cannot be read or written, or bad JSON
  3  the template was rejected; nothing is written
  4  a limit was reached; nothing is written)";

inline constexpr const char* checkNotes =
    R"(Each finding is "PATH:LINE:COLUMN: SEVERITY: MESSAGE", with the line and a caret
below it. Lines and columns count from 1, columns in code points.

Errors are templates that are rejected, included files that do not exist or
cannot be read, and files that include themselves with no condition and no loop
around the includes; in other ways this is a note. With --context or -D, names
that the context does not have, has as another kind of value, or has in another
loop than the one of their variable are warnings: both parts of each condition
are checked, and each element of each list that the context holds. With --unused,
so are names of the context that no template uses. A file with a NUL byte, a
byte-order mark or malformed UTF-8 is a warning, too.

Exit status:
  0  nothing was found, notes aside
  1  there are errors or warnings
  2  a wrong call, a file that cannot be read or written, or bad JSON)";

inline constexpr const char* namesNotes =
    R"(Lists each name with the kind of value that it needs, where it is used, and the
loops around it, in included files, too.

A skeleton has what begins with a loop's variable in the elements of that loop's
list, and in an included file what is in a loop around the include.

Exit status:
  0  written without a message
  1  written with messages: an included file is rejected or cannot be read, a
     name is not in the context, or is used as two kinds in a skeleton
  2  a wrong call, a file that cannot be read or written, or bad JSON
  3  a template was rejected; nothing is written)";

inline constexpr const char* depsNotes =
    R"(Lists the files that the templates include, and that these include, each once, by
their paths from the working directory, whether or not they exist.

Exit status:
  0  written without a message
  1  written with messages: an included file is rejected or cannot be read, or a
     name is not in the context
  2  a wrong call, a file that cannot be read or written, or bad JSON
  3  a template was rejected; nothing is written)";

inline constexpr const char* treeNotes =
    R"(Each node is a line with the line and the column where it begins. Texts are
written as JSON strings. Included files are not looked at.

Exit status:
  0  written without a message
  1  written with messages: a name is not in the context
  2  a wrong call, a file that cannot be read or written, or bad JSON
  3  a template was rejected; nothing is written)";

inline constexpr const char* lspNotes =
    R"(Editors start it; editors/README.md says how to set them up. It reads and writes
version 3.17 of the protocol on the standard streams.

Exit status:
  0  the client shut it down
  1  the client was gone before that
  2  a wrong call, or output that cannot be written)";

} // namespace stencilor

#endif
