#ifndef LIBSTENCILOR_TEMPLATE_SYNTAX_TREE_H
#define LIBSTENCILOR_TEMPLATE_SYNTAX_TREE_H

#include <libStencilor/template/record_memory.h>

#include <boost/variant/recursive_wrapper.hpp>
#include <boost/variant/variant.hpp>

#include <cstddef>
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

    static void* operator new(std::size_t size) { return record_memory::allocate(size); }
    static void operator delete(void* record) noexcept { record_memory::release(record); }
};

/// `{% for variable in list_name %} body {% endfor %}`
struct for_expr {
    content_list body;
    std::string variable;
    std::string list_name;

    static void* operator new(std::size_t size) { return record_memory::allocate(size); }
    static void operator delete(void* record) noexcept { record_memory::release(record); }
};

/// `{{ name }}`
struct replace_expr {
    std::string name;

    static void* operator new(std::size_t size) { return record_memory::allocate(size); }
    static void operator delete(void* record) noexcept { record_memory::release(record); }
};

/// `{% include "path" %}`
struct include_expr {
    std::string path;

    static void* operator new(std::size_t size) { return record_memory::allocate(size); }
    static void operator delete(void* record) noexcept { record_memory::release(record); }
};

/// Destroys the nodes of `list`. Takes neither memory nor stack, however deeply blocks are nested;
/// the destructor of a list would take stack for each level.
void destroyNodes(content_list& list) noexcept;

/// A tree.
/// Ownership: owns its nodes, and destroys them without recursion.
/// Copying: not possible, nothing needs two trees.
struct syntax_tree {
    syntax_tree() = default;
    syntax_tree(const syntax_tree&) = delete;
    syntax_tree& operator=(const syntax_tree&) = delete;
    ~syntax_tree() { destroyNodes(nodes); }

    content_list nodes;
};

} // namespace kel::Stencilor::internal

#endif
