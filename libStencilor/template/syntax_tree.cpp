#include <libStencilor/template/syntax_tree.h>

#include <boost/container/small_vector.hpp>
#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <algorithm>
#include <new>
#include <utility>

namespace kel::Stencilor::internal {

namespace {

using waiting_lists = boost::container::small_vector<content_list, 4>;

bool isBlock(const content& node) {
    return node.which() <= 1; // if_expr or for_expr
}

/// Moves the lists of a block that hold blocks themselves to where they wait for their turn.
struct child_lists : boost::static_visitor<> {
    explicit child_lists(waiting_lists& lists) : waiting(lists) {}

    void operator()(if_expr& block) const {
        detach(block.then_list);
        detach(block.else_list);
    }
    void operator()(for_expr& block) const { detach(block.body); }
    template <typename Leaf>
    void operator()(Leaf&) const {}

    void detach(content_list& list) const {
        if (std::any_of(list.begin(), list.end(), isBlock)) {
            waiting.push_back(std::move(list));
        }
    }

    waiting_lists& waiting;
};

} // namespace

void takeApart(content_list& list) noexcept {
    waiting_lists waiting;
    const child_lists detachChildren(waiting);
    try {
        while (true) {
            for (content& node : list) {
                boost::apply_visitor(detachChildren, node);
            }
            list.clear();
            if (waiting.empty()) {
                return;
            }
            list = std::move(waiting.back());
            waiting.pop_back();
        }
    } catch (const std::bad_alloc&) {
        // No memory to remember lists in: what is left is destroyed level by level.
        list.clear();
    }
}

} // namespace kel::Stencilor::internal
