#ifndef TESTS_SUPPORT_ORACLES_SYNTAXTREE_H
#define TESTS_SUPPORT_ORACLES_SYNTAXTREE_H

#include <libStencilor/template/syntax_tree.h>

#include <string>

namespace support {

/// The nodes in one line, to compare and to read:
///
///     'text' {name} include(path) if(name ? nodes : nodes) for(variable in list ? nodes)
///
/// An `if` without nodes behind the colon has no colon.
std::string describe(const kel::Stencilor::internal::content_list& nodes);

} // namespace support

#endif
