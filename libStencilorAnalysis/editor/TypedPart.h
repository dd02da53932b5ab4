#ifndef LIBSTENCILORANALYSIS_EDITOR_TYPEDPART_H
#define LIBSTENCILORANALYSIS_EDITOR_TYPEDPART_H

#include <libStencilor/Syntax.h>

#include <cstddef>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// What is being typed in a tag, which may have no end yet.
struct TypedPart {
    enum class Kind { None, Keyword, String, Condition, Variable, In, List, Path };

    Kind kind = Kind::None;
    SyntaxRange word{};    ///< the name, path or keyword around the offset; may be empty
    bool isClosed = false; ///< only spaces and the closing pair follow the word
    bool isQuoted = false; ///< of a path: a quotation mark follows
};

/// Finds it from the line that the offset is in.
TypedPart findTypedPart(std::string_view text, std::size_t offset);

} // namespace kel::Stencilor::Analysis

#endif
