#ifndef LIBSTENCILOR_SYNTAX_H
#define LIBSTENCILOR_SYNTAX_H

/// @file
/// Tells where the parts of a template stand, and why it is rejected: for hosts that show an editor
/// of templates, or check them before they are used.
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
/// The same parser as in `buildOutput` reads the template, so that the two never differ in what
/// they reject.
///
/// Units: positions count bytes from the beginning of the template. (With another base library,
///   characters of its `String`.) Lines and columns are the host's to count.

#include <libKel/String.h>
#include <libStencilor/Export.h>

namespace kel::Stencilor {

/// Where something stands.
struct SyntaxRange {
    unsigned int begin = 0; ///< the first byte
    unsigned int end = 0;   ///< the first byte behind it

    /// True for a range that holds nothing.
    bool isEmpty() const { return begin == end; }
};

/// A text or a tag.
struct SyntaxElement {
    /// What it is.
    enum class Kind {
        Text,         ///< what is no tag
        Substitution, ///< `{{ name }}`
        If,           ///< `{% if name %}`
        Else,         ///< `{% else %}`
        EndIf,        ///< `{% endif %}`
        For,          ///< `{% for name in list %}`
        EndFor,       ///< `{% endfor %}`
        Include,      ///< `{% include "name" %}`
    };

    Kind kind = Kind::Text; ///< what it is
    SyntaxRange whole{};    ///< the text; of a tag all from its opening to its closing pair
    SyntaxRange name{}; ///< of a substitution or condition; a loop's variable; a path; else empty
    SyntaxRange list{}; ///< the name of a loop's list; else empty
};

/// What a template lacks at the place where it goes wrong.
enum class SyntaxExpectation {
    Nothing,             ///< the template is well formed
    Keyword,             ///< in a tag outside all blocks
    KeywordInIf,         ///< in a tag inside an `if`
    KeywordInElse,       ///< in a tag inside an `else`
    KeywordInFor,        ///< in a tag inside a loop
    SubstitutionName,    ///< the name of a value
    SubstitutionEnd,     ///< the closing pair of a substitution
    IfName,              ///< the name of a condition
    IfEnd,               ///< the closing pair of an `if`
    ElseEnd,             ///< the closing pair of an `else`
    EndIfEnd,            ///< the closing pair of an `endif`
    ForVariable,         ///< the variable of a loop
    ForIn,               ///< the keyword `in`
    ForList,             ///< the name of a list
    ForEnd,              ///< the closing pair of a `for`
    EndForEnd,           ///< the closing pair of an `endfor`
    IncludeOpeningQuote, ///< the quotation mark before a path
    IncludePath,         ///< the path of an inclusion
    IncludeClosingQuote, ///< the quotation mark behind a path
    IncludeEnd,          ///< the closing pair of an inclusion
    MissingElseOrEndIf,  ///< the end of an `if`, or its `else`
    MissingEndIf,        ///< the end of an `else`
    MissingEndFor,       ///< the end of a loop
};

/// Why a template is rejected.
struct SyntaxFault {
    /// What is missing at `offset`.
    SyntaxExpectation expected = SyntaxExpectation::Nothing;

    unsigned int offset = 0; ///< how far the template could be read, blanks before a token included
    unsigned int tag = 0;    ///< where the tag at fault begins; `offset` if a block has no end
    SyntaxRange block{}; ///< the tag that opened the innermost open block; empty if none is open

    /// True where the template is rejected.
    bool isPresent() const { return expected != SyntaxExpectation::Nothing; }
};

/// Receives the parts of a template.
///
/// Ownership: the visitor stays the host's; it owns nothing itself.
/// Threads: it is called by the thread that called `readSyntax`.
class STENCILOR_EXPORT SyntaxVisitor {
  public:
    /// A visitor holds nothing itself.
    /// @{
    SyntaxVisitor();
    SyntaxVisitor(const SyntaxVisitor& other);
    SyntaxVisitor& operator=(const SyntaxVisitor& other);
    virtual ~SyntaxVisitor();
    /// @}

    /// Receives one part. What it throws ends the reading, and reaches the caller of `readSyntax`.
    /// @param element lent for the call
    virtual void visit(const SyntaxElement& element) = 0;
};

/// Reads a template. Its parts follow each other without a gap, and the closing tags fit the
/// opening ones. Where it is rejected, the visitor receives all parts before the tag at fault,
/// those in open blocks included. Included files are not looked at.
///
/// @param input the template, which ends at its first NUL byte
/// @param visitor receives the parts in their order
/// @return why the template is rejected, if it is
///
/// Ownership: `input` is only read; the result owns nothing.
/// Threads: any number of calls may run at once, each with a visitor of its own.
/// Errors: only memory exhaustion throws (`std::bad_alloc`), and the visitor.
STENCILOR_EXPORT SyntaxFault readSyntax(const String& input, SyntaxVisitor& visitor);

/// The same without a visitor.
///
/// @param input the template, which ends at its first NUL byte
/// @return why the template is rejected, if it is
STENCILOR_EXPORT SyntaxFault findSyntaxFault(const String& input);

/// Tells in English what was expected.
///
/// @param expectation what a fault tells
/// @return what may stand behind the word "expected", such as `"%}" after the name`; a constant
///   text. Empty for `Nothing`.
STENCILOR_EXPORT const char* describe(SyntaxExpectation expectation);

} // namespace kel::Stencilor

#endif
