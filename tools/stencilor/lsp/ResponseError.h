#ifndef TOOLS_STENCILOR_LSP_RESPONSEERROR_H
#define TOOLS_STENCILOR_LSP_RESPONSEERROR_H

#include <stdexcept>
#include <string>

namespace stencilor::lsp {

enum class ErrorCode : int {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    InternalError = -32603,
    ServerNotInitialized = -32002,
    RequestFailed = -32803,
    RequestCancelled = -32800,
};

/// The response to a request that fails.
class ResponseError : public std::runtime_error {
  public:
    ResponseError(ErrorCode code, const std::string& message)
        : std::runtime_error(message), code_(code) {}

    ErrorCode code() const { return code_; }

  private:
    ErrorCode code_;
};

} // namespace stencilor::lsp

#endif
