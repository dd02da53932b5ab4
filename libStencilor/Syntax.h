#ifndef LIBSTENCILOR_SYNTAX_H
#define LIBSTENCILOR_SYNTAX_H

/// @file
/// Locates the parts of a template, or the error that makes it malformed: for hosts that provide an
/// editor, or check templates before using them.
///
///     #include <libStencilor/Syntax.h>
///     #include <iostream>
///
///     using namespace kel::Stencilor;
///
///     int main() {
///         const SyntaxFault fault = findSyntaxFault("Hello, {{ name }!\n");
///         if (fault.isPresent()) {
///             std::cout << fault.offset << ": expected " << describe(fault.expected) << '\n';
///         }
///     }
///
/// This is the parser of `buildOutput`, so both reject the same templates.
///
/// Units: positions are byte offsets in the template. (With another base library, they count
///   characters of its `String`.) Hosts compute lines and columns themselves.

#include <libKel/String.h>
#include <libStencilor/Export.h>

namespace kel::Stencilor {

/// A range of positions.
struct SyntaxRange {
    unsigned int begin = 0; ///< the first byte
    unsigned int end = 0;   ///< the first byte after it

    /// True if the range is empty.
    bool isEmpty() const { return begin == end; }
};

/// Text or a tag.
struct SyntaxElement {
    /// The kinds of elements.
    enum class Kind {
        Text,         ///< everything outside tags
        Substitution, ///< `{{ name }}`
        If,           ///< `{% if name %}`
        Else,         ///< `{% else %}`
        EndIf,        ///< `{% endif %}`
        For,          ///< `{% for name in list %}`
        EndFor,       ///< `{% endfor %}`
        Include,      ///< `{% include "name" %}`
    };

    Kind kind = Kind::Text; ///< its kind
    SyntaxRange whole{};    ///< the whole text or tag, with the tag's delimiters
    SyntaxRange name{};     ///< a value's name, a loop variable, or a path; otherwise empty
    SyntaxRange list{};     ///< the name of a loop's list; otherwise empty
};

/// What was expected at the position of a fault.
enum class SyntaxExpectation {
    Nothing,             ///< the template is well formed
    Keyword,             ///< in a tag outside all blocks
    KeywordInIf,         ///< in a tag inside an `if`
    KeywordInElse,       ///< in a tag inside an `else`
    KeywordInFor,        ///< in a tag inside a loop
    SubstitutionName,    ///< the name of a value
    SubstitutionEnd,     ///< the closing delimiter of a substitution
    IfName,              ///< the name of a condition
    IfEnd,               ///< the closing delimiter of an `if`
    ElseEnd,             ///< the closing delimiter of an `else`
    EndIfEnd,            ///< the closing delimiter of an `endif`
    ForVariable,         ///< the variable of a loop
    ForIn,               ///< the keyword `in`
    ForList,             ///< the name of a list
    ForEnd,              ///< the closing delimiter of a `for`
    EndForEnd,           ///< the closing delimiter of an `endfor`
    IncludeOpeningQuote, ///< the quotation mark before a path
    IncludePath,         ///< the path of an include
    IncludeClosingQuote, ///< the quotation mark after a path
    IncludeEnd,          ///< the closing delimiter of an include
    MissingElseOrEndIf,  ///< the end of an `if`, or its `else`
    MissingEndIf,        ///< the end of an `else`
    MissingEndFor,       ///< the end of a loop
};

/// Why a template is rejected.
struct SyntaxFault {
    /// What was expected at `offset`.
    SyntaxExpectation expected = SyntaxExpectation::Nothing;

    unsigned int offset = 0; ///< the end of what could be parsed, with spaces before a token
    unsigned int tag = 0;    ///< where the malformed tag begins; `offset` for an open block
    SyntaxRange block{};     ///< the tag of the innermost open block; empty if none is open

    /// True if the template is rejected.
    bool isPresent() const { return expected != SyntaxExpectation::Nothing; }
};

/// Receives the parts of a template.
///
/// Ownership: the visitor belongs to the host.
/// Threads: it is called in the thread that called `readSyntax`.
class STENCILOR_EXPORT SyntaxVisitor {
  public:
    /// The base class holds no data.
    /// @{
    SyntaxVisitor();
    SyntaxVisitor(const SyntaxVisitor& other);
    SyntaxVisitor& operator=(const SyntaxVisitor& other);
    virtual ~SyntaxVisitor();
    /// @}

    /// Receives one part. Exceptions stop the parser and reach the caller of `readSyntax`.
    /// @param element valid only during the call
    virtual void visit(const SyntaxElement& element) = 0;
};

/// Parses a template. The parts are passed in order and without gaps, and the closing tags match
/// the opening ones. If the template is rejected, the visitor receives all parts before the
/// malformed tag, even those in open blocks. Included files are not read.
///
/// @param input the template, which ends at its first NUL byte
/// @param visitor receives the parts in order
/// @return the fault, if the template is rejected
///
/// Ownership: `input` is only read; the result borrows nothing.
/// Threads: any number of calls may run at once, each with its own visitor.
/// Errors: only `std::bad_alloc`, and what the visitor throws.
STENCILOR_EXPORT SyntaxFault readSyntax(const String& input, SyntaxVisitor& visitor);

/// The same without a visitor.
///
/// @param input the template, which ends at its first NUL byte
/// @return the fault, if the template is rejected
STENCILOR_EXPORT SyntaxFault findSyntaxFault(const String& input);

/// Describes in English what was expected.
///
/// @param expectation the expectation of a fault
/// @return a phrase that completes "expected ...", such as `"%}" after the name`; a constant. Empty
///   for `Nothing`.
STENCILOR_EXPORT const char* describe(SyntaxExpectation expectation);

} // namespace kel::Stencilor

#endif
