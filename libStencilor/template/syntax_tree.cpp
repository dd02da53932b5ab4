#include <libStencilor/template/syntax_tree.h>

#include <boost/variant/get.hpp>

#include <algorithm>
#include <cassert>
#include <cstring>

namespace kel::Stencilor::internal {

namespace {

bool isBlock(const content& node) {
    return node.which() <= 1; // if_expr or for_expr
}

bool holdsBlocks(const content_list& list) {
    return std::any_of(list.begin(), list.end(), isBlock);
}

/// A list of the block `node` that contains blocks, or null.
content_list* nestedList(content& node) {
    if (auto* const conditional = boost::get<if_expr>(&node)) {
        return holdsBlocks(conditional->then_list)   ? &conditional->then_list
               : holdsBlocks(conditional->else_list) ? &conditional->else_list
                                                     : nullptr;
    }
    auto* const loop = boost::get<for_expr>(&node);
    return loop != nullptr && holdsBlocks(loop->body) ? &loop->body : nullptr;
}

/// An unneeded string of the block `node`.
std::string& spareString(content& node) {
    if (auto* const conditional = boost::get<if_expr>(&node)) {
        return conditional->name;
    }
    auto* const loop = boost::get<for_expr>(&node);
    assert(loop != nullptr);
    return loop->variable;
}

/// Stores a pointer in the characters of a string, in which every string has room for it.
void keep(content_list* pointer, std::string& string) noexcept {
    assert(string.capacity() >= sizeof(pointer)); // so nothing is allocated
    string.assign(reinterpret_cast<const char*>(&pointer), sizeof(pointer));
}

content_list* kept(const std::string& string) noexcept {
    content_list* pointer = nullptr;
    std::memcpy(&pointer, string.data(), sizeof(pointer));
    return pointer;
}

} // namespace

// While a nested list is destroyed, it is swapped with the list around it, and the block between
// them stores the position of the next outer list. So the tree itself is the stack.
void destroyNodes(content_list& list) noexcept {
    content_list* outer = nullptr; // the position of the outer list
    while (true) {
        while (!list.empty()) {
            content_list* const nested = isBlock(list.back()) ? nestedList(list.back()) : nullptr;
            if (nested == nullptr) {
                list.pop_back();
                continue;
            }
            keep(outer, spareString(list.back()));
            outer = nested;
            list.swap(*nested);
        }
        if (outer == nullptr) {
            return;
        }
        list.swap(*outer);
        outer = kept(spareString(list.back()));
    }
}

} // namespace kel::Stencilor::internal
