#ifndef TESTS_MODERN_RENDERING_H
#define TESTS_MODERN_RENDERING_H

#include "../support/Test.h"
#include "../support/oracles/ObviousUtf8.h"

#include <libStencilor/Template.h>

// Short names for templates that are parsed once, and checks that apply to every render.

namespace support {

using kel::Stencilor::Context;
using kel::Stencilor::ContextBase;
using kel::Stencilor::Escape;
using kel::Stencilor::IncludeSite;
using kel::Stencilor::MemoryTemplates;
using kel::Stencilor::RenderLimits;
using kel::Stencilor::RenderMessage;
using kel::Stencilor::RenderOptions;
using kel::Stencilor::RenderResult;
using kel::Stencilor::RenderStatus;
using kel::Stencilor::SyntaxRange;
using kel::Stencilor::Template;
using kel::Stencilor::TemplateSource;
using kel::Stencilor::Value;

/// The text of a range of a template.
inline std::string textIn(const kel::String& text, SyntaxRange range) {
    return std::string(text.view().substr(range.begin, range.end - range.begin));
}

/// A value with a list of this many elements without names.
inline Value listOfNulls(std::size_t count) {
    Value list = Value::list({});
    for (std::size_t element = 0; element < count; ++element) {
        list.add(nullptr);
    }
    return list;
}

struct Pieces {
    RenderResult result;
    std::vector<std::string> pieces;

    std::string joined() const {
        std::string all;
        for (const std::string& piece : pieces) {
            all += piece;
        }
        return all;
    }
};

/// Renders in pieces, and checks the promises for each piece.
inline Pieces renderPieces(const Template& made, const ContextBase& context,
                           const RenderOptions& options = {}) {
    Pieces written;
    const auto write = [&written](std::string_view piece) { written.pieces.emplace_back(piece); };
    written.result = made.renderTo(context, write, options);
    EXPECT_TRUE(written.result.text.empty());
    for (const std::string& piece : written.pieces) {
        EXPECT_FALSE(piece.empty());
        EXPECT_LE(piece.size(), 65536u);
        EXPECT_TRUE(piece == obviouslyRepairedUtf8(piece)) << "a piece is not valid UTF-8";
    }
    return written;
}

/// Expects that the pieces add up to the text.
inline void expectSamePieces(const Template& made, const ContextBase& context,
                             const RenderOptions& options = {}) {
    const RenderResult whole = made.render(context, options);
    const Pieces written = renderPieces(made, context, options);
    EXPECT_EQ(whole.status, RenderStatus::Complete);
    EXPECT_TRUE(written.joined() == whole.text.view()) << "the pieces are another text";
    EXPECT_TRUE(whole.text.view() == obviouslyRepairedUtf8(whole.text.view()));
}

} // namespace support

#endif
