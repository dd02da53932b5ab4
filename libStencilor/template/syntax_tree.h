#ifndef LIBSTENCILOR_TEMPLATE_SYNTAX_TREE_H
#define LIBSTENCILOR_TEMPLATE_SYNTAX_TREE_H

#include <boost/variant/recursive_wrapper.hpp>
#include <boost/variant/variant.hpp>

#include <string>
#include <vector>

namespace kel::Stencilor::internal {

struct if_expr;
struct for_expr;
struct replace_expr;
struct include_expr;

/// A node: one of the four statements, or literal text. The order fixes `which()`, 0 to 4, and
/// makes a default-constructed node an empty `if_expr`.
/// Copying a node copies all below it. Moving one allocates, and leaves an empty record behind.
using content =
    boost::variant<boost::recursive_wrapper<if_expr>, boost::recursive_wrapper<for_expr>,
                   boost::recursive_wrapper<replace_expr>, boost::recursive_wrapper<include_expr>,
                   std::string>;

/// The nodes of one level, in the order of the template.
using content_list = std::vector<content>;

/// `{% if name %} then_list {% else %} else_list {% endif %}`. A block without `else` is the same
/// as one whose `else` part is empty.
struct if_expr {
    content_list then_list;
    content_list else_list;
    std::string name;
};

/// `{% for variable in list_name %} body {% endfor %}`
struct for_expr {
    content_list body;
    std::string variable;
    std::string list_name;
};

/// `{{ name }}`
struct replace_expr {
    std::string name;
};

/// `{% include "path" %}`
struct include_expr {
    std::string path;
};

/// Empties `list` without recursion, however deep its blocks are nested. Letting a list go out of
/// scope would take stack for each level.
void takeApart(content_list& list) noexcept;

/// A tree for the time of one call.
/// Ownership: owns its nodes, and takes them apart at the end.
/// Copying: not possible, nothing needs two trees.
struct syntax_tree {
    syntax_tree() = default;
    syntax_tree(const syntax_tree&) = delete;
    syntax_tree& operator=(const syntax_tree&) = delete;
    ~syntax_tree() { takeApart(nodes); }

    content_list nodes;
};

} // namespace kel::Stencilor::internal

#endif
