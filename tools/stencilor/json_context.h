#ifndef TOOLS_STENCILOR_JSON_CONTEXT_H
#define TOOLS_STENCILOR_JSON_CONTEXT_H

#include <libStencilor/Stencilor.h>

#include <tools/stencilor/json_document.h>

#include <cstdint>
#include <memory>

namespace stencilor {

/// What the dotted names of one context may take, in bytes. Each member of an object nested n deep
/// stands in n objects, so a small text may ask for more than any machine has.
inline constexpr std::uint64_t dottedNamesLimit = 512u * 1024 * 1024;

/// Builds the context that a JSON value describes; null where it is JSON's null, or where its
/// dotted names would take more than `dottedNamesLimit`.
///
/// Strings and numbers become strings, true and false booleans, arrays lists, objects dictionaries,
/// null a null entry. An object with the member `$boolean` becomes a boolean with the other members
/// as its children.
///
/// Dotted names: the language does not descend at dots, so an object has, beside its own members,
/// the members of the objects in it under their dotted names, at any depth; arrays end this. A
/// member whose own name is the dotted one wins, and otherwise the longest own name that the dotted
/// one begins with. A list or boolean under a dotted name shares what it holds with the original; a
/// dictionary there is empty, for no template can look into it. The tree is therefore to be
/// rendered or read, not to be changed.
///
/// Ownership: the result owns the whole tree; `root` is not needed any more.
std::unique_ptr<kel::Stencilor::ContextBase> buildContext(const JsonValue& root);

/// About how many bytes the dotted names of `root` would take.
std::uint64_t measureDottedNames(const JsonValue& root);

} // namespace stencilor

#endif
