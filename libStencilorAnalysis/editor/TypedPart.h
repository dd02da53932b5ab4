#ifndef LIBSTENCILORANALYSIS_EDITOR_TYPEDPART_H
#define LIBSTENCILORANALYSIS_EDITOR_TYPEDPART_H

#include <libStencilor/Syntax.h>

#include <cstddef>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// The part that is being typed in a tag, which may be unfinished.
struct TypedPart {
    enum class Kind { None, Keyword, String, Condition, Variable, In, List, Path };

    Kind kind = Kind::None;
    SyntaxRange word{};    ///< the name, path or keyword around the offset; may be empty
    bool isClosed = false; ///< only spaces and the closing delimiter follow the word
    bool isQuoted = false; ///< of a path: a quotation mark follows
};

/// Finds the part from the line of the offset.
TypedPart findTypedPart(std::string_view text, std::size_t offset);

} // namespace kel::Stencilor::Analysis

#endif
