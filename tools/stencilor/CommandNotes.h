#ifndef TOOLS_STENCILOR_COMMANDNOTES_H
#define TOOLS_STENCILOR_COMMANDNOTES_H

// The final parts of the help. A line that ends with a colon is the heading of the lines
// below it; in the manual page, lines that begin with two spaces are not wrapped.

namespace stencilor {

inline constexpr const char* renderNotes =
    R"(CONTEXT is a JSON file that contains an object. Strings and numbers become
strings (numbers as written), true and false become booleans, arrays lists, and
objects dictionaries; null counts as missing. A member of a nested object is
also available under its dotted name ("user.name"), unless a member with that
name exists. An array element that is not an object is available as "value". An
object with the member "$boolean": true or false is a boolean; its other members
are in scope inside the block.

Messages go to stderr with the file, line and column of their cause, which may
be in an included file. Each place is reported once. Limits may end in K, M or
G, and 0 means no limit, except for the depth. The defaults are 100000000 steps,
1G of output, 256M of templates, and a depth of 100.

Exit status:
  0  rendered without messages
  1  rendered with warnings, about gaps or damaged bytes; with --strict, they
     are errors, and nothing is written
  2  wrong usage, a file that cannot be read or written, or invalid JSON
  3  the template was rejected; nothing is written
  4  a limit was reached; nothing is written)";

inline constexpr const char* checkNotes =
    R"(Each finding has the form "PATH:LINE:COLUMN: SEVERITY: MESSAGE", followed by the
line and a caret. Lines and columns start at 1, and columns count code points.

Errors are reported for templates that are rejected, for included files that do
not exist or cannot be read, and for files that include themselves outside any
condition or loop. Inside one, this is only a note. With --context or -D, a name
causes a warning if the context does not contain it, contains it as another kind
of value, or contains it in a loop other than the one of its variable. Both
parts of each condition are checked, and each element of each list in the
context. With --unused, names in the context that no template uses cause
warnings, too, as do NUL bytes, byte-order marks and malformed UTF-8 in files.

Exit status:
  0  nothing was found, or only notes
  1  errors or warnings were found
  2  wrong usage, a file that cannot be read or written, or invalid JSON)";

inline constexpr const char* namesNotes =
    R"(Lists each name with the kind of value that it requires, where it is used, and
the loops around it. Included files are listed, too.

In a skeleton, names with the variable of a loop are members of that loop's
elements. Names in a file that is included in a loop are, too.

Exit status:
  0  written without messages
  1  written with messages: an included file is rejected or cannot be read, a
     name is not in the context, or has two kinds in a skeleton
  2  wrong usage, a file that cannot be read or written, or invalid JSON
  3  a template was rejected; nothing is written)";

inline constexpr const char* depsNotes =
    R"(Lists all files that the templates include, directly or through other files. Each
is listed once, with its path from the working directory, whether or not it
exists.

Exit status:
  0  written without messages
  1  written with messages: an included file is rejected or cannot be read, or a
     name is not in the context
  2  wrong usage, a file that cannot be read or written, or invalid JSON
  3  a template was rejected; nothing is written)";

inline constexpr const char* treeNotes =
    R"(Each node is on a line of its own, with the line and column where it begins. Text
is written as JSON strings. Included files are not read.

Exit status:
  0  written without messages
  1  written with messages: a name is not in the context
  2  wrong usage, a file that cannot be read or written, or invalid JSON
  3  a template was rejected; nothing is written)";

inline constexpr const char* lspNotes =
    R"(Editors start the server; editors/README.md explains how to set them up. It uses
version 3.17 of the protocol on the standard streams.

Exit status:
  0  the client shut it down
  1  the client disconnected without shutting it down
  2  wrong usage, or output that cannot be written)";

} // namespace stencilor

#endif
