#include <tools/stencilor/lsp/Requests.h>

namespace stencilor::lsp {

const std::vector<RequestInfo>& requests() {
    static const std::vector<RequestInfo> table = {};
    return table;
}

} // namespace stencilor::lsp
