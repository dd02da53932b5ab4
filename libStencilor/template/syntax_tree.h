#ifndef LIBSTENCILOR_TEMPLATE_SYNTAX_TREE_H
#define LIBSTENCILOR_TEMPLATE_SYNTAX_TREE_H

#include <libStencilor/template/record_memory.h>

#include <boost/variant/recursive_wrapper.hpp>
#include <boost/variant/variant.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace kel::Stencilor::internal {

struct if_expr;
struct for_expr;
struct replace_expr;
struct include_expr;

/// A node: one of the four statements, or literal text. The order fixes `which()`, 0 to 4, and
/// makes a default-constructed node an empty `if_expr`. Copying a node is deep. Moving one
/// allocates, and leaves an empty record in the source.
using content =
    boost::variant<boost::recursive_wrapper<if_expr>, boost::recursive_wrapper<for_expr>,
                   boost::recursive_wrapper<replace_expr>, boost::recursive_wrapper<include_expr>,
                   std::string>;

} // namespace kel::Stencilor::internal

/// Nodes are allocated like records: otherwise, allocating lists would take a quarter of the time
/// for a template of many short blocks. (The type of a list does not change.)
template <>
struct std::allocator<kel::Stencilor::internal::content> {
    using value_type = kel::Stencilor::internal::content;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using propagate_on_container_move_assignment = std::true_type;
    using is_always_equal = std::true_type;

    allocator() = default;
    template <typename Other>
    allocator(const allocator<Other>&) noexcept {}

    inline value_type* allocate(std::size_t count);
    inline void deallocate(value_type* nodes, std::size_t count) noexcept;

    bool operator==(const allocator&) const = default;
};

namespace kel::Stencilor::internal {

/// The nodes of one level, in template order.
using content_list = std::vector<content>;

/// `{% if name %} then_list {% else %} else_list {% endif %}`. A block without `else` equals one
/// with an empty `else` part.
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

/// Destroys the nodes of `list`. Needs neither memory nor stack, regardless of the nesting of
/// blocks, whereas the destructor of a list would use stack for each level.
void destroyNodes(content_list& list) noexcept;

/// A tree.
/// Ownership: owns its nodes, and destroys them without recursion.
/// Copying: not possible, because it is not needed.
struct syntax_tree {
    syntax_tree() = default;
    syntax_tree(const syntax_tree&) = delete;
    syntax_tree& operator=(const syntax_tree&) = delete;
    ~syntax_tree() { destroyNodes(nodes); }

    content_list nodes;
};

} // namespace kel::Stencilor::internal

// No caller requests more nodes than a template has bytes.
inline kel::Stencilor::internal::content*
std::allocator<kel::Stencilor::internal::content>::allocate(std::size_t count) {
    using kel::Stencilor::internal::record_memory;
    return static_cast<value_type*>(record_memory::allocateList(count * sizeof(value_type)));
}

inline void std::allocator<kel::Stencilor::internal::content>::deallocate(value_type* nodes,
                                                                          std::size_t) noexcept {
    kel::Stencilor::internal::record_memory::release(nodes);
}

#endif
