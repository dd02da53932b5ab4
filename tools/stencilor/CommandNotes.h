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

With --explain the messages are those of the check command: each cause once,
with its file and line, in included files, too. What is written and the exit
status stay the same.

With --trace there is a line on the standard error stream for each scope that is
entered, "trace: NAME:LINE", indented by two blanks for each scope around it
(from 40 scopes on their number is shown instead).

Exit status:
  0  rendered without a message
  1  rendered with messages; the output is written, unless --strict is given
  2  a wrong call, a file that cannot be read or written, or bad JSON
  3  the template was rejected; nothing is written)";

inline constexpr const char* checkNotes =
    R"(Each finding is "PATH:LINE:COLUMN: SEVERITY: MESSAGE", with the line and a caret
below it. Lines and columns count from 1, columns in code points.

Errors are templates that are rejected, and included files that are not there or
cannot be read, and files that include themselves with no condition and no loop
around the includes; in other ways this is a note. With --context or -D, names that the context does not have, or has as another kind of value, are
warnings: both parts of each condition are looked at, and each element of each
list that the context holds.

Exit status:
  0  nothing was found, notes aside
  1  there are errors or warnings
  2  a wrong call, a file that cannot be read or written, or bad JSON)";

inline constexpr const char* namesNotes =
    R"(Each name stands with the kind of value that it needs, where it is used, and the
loops around it, in included files, too.

A skeleton has what begins with a loop's variable in the elements of that loop's
list, and in an included file what stands in a loop around the inclusion.

Exit status:
  0  written without a message
  1  written with messages: an included file is rejected or cannot be read, or
     a skeleton is asked for a name of two kinds
  2  a wrong call, or a file that cannot be read or written
  3  the template was rejected; nothing is written)";

inline constexpr const char* depsNotes =
    R"(The files are those that the template includes, and that these include, each
once, by their paths from the working directory, be they there or not.

Exit status:
  0  written without a message
  1  written with messages: an included file is rejected or cannot be read
  2  a wrong call, or a file that cannot be read or written
  3  the template was rejected; nothing is written)";

inline constexpr const char* treeNotes =
    R"(Each node is a line with the line and the column where it begins. Texts are
written as JSON strings. Included files are not looked at.

Exit status:
  0  written
  2  a wrong call, or a file that cannot be read or written
  3  the template was rejected; nothing is written)";

} // namespace stencilor

#endif
