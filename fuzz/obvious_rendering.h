#ifndef FUZZ_OBVIOUS_RENDERING_H
#define FUZZ_OBVIOUS_RENDERING_H

#include <libStencilor/Stencilor.h>

#include <string>
#include <string_view>

namespace fuzz {

/// What one rendering gives.
struct Rendered {
    std::string output;
    std::string errors;

    bool operator==(const Rendered&) const = default;
};

/// As `buildOutput`, word for word after the rules of the language: each node has its own copies of
/// all scopes and prefixes, and each name is searched anew. Slow, recursive, and independent of the
/// renderer; the parser it shares.
Rendered obviouslyRendered(std::string_view text, const kel::Stencilor::ContextBase& context);

} // namespace fuzz

#endif
