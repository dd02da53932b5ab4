#ifndef TESTS_SUPPORT_ORACLES_SYNTAXTREE_H
#define TESTS_SUPPORT_ORACLES_SYNTAXTREE_H

#include <libStencilor/template/syntax_tree.h>

#include <string>

namespace support {

/// Formats the nodes on one line, to be compared and read:
///
///     'text' {name} include(path) if(name ? nodes : nodes) for(variable in list ? nodes)
///
/// An `if` without nodes after the colon has no colon.
std::string describe(const kel::Stencilor::internal::content_list& nodes);

} // namespace support

#endif
