#ifndef TOOLS_STENCILOR_LSP_MESSAGEREADER_H
#define TOOLS_STENCILOR_LSP_MESSAGEREADER_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace stencilor::lsp {

/// Splits a stream into the messages in it: headers, an empty line, as many bytes as the header
/// `Content-Length` specifies.
///
/// Errors: headers without a length, and content that is too long, are skipped and replaced by an
///   empty message. Reading continues after them.
class MessageReader {
  public:
    /// Reads at least one byte and at most `size`; returns how many, 0 at the end of the stream.
    using Read = std::function<std::size_t(char* data, std::size_t size)>;

    static constexpr std::size_t longestContent = std::size_t{256} << 20;
    static constexpr std::size_t longestLine = 4096; ///< what is kept of a longer one

    explicit MessageReader(Read read) : read_(std::move(read)) {}

    /// The content of the next message; nothing at the end of the stream, even within a message.
    std::optional<std::string> next();

  private:
    bool fill();
    std::optional<std::string> line();
    std::optional<std::string> content(std::size_t size);
    bool skip(std::size_t size);

    Read read_;
    std::string buffer_;
    std::size_t at_ = 0; // in the buffer
};

/// A message in the form that is sent.
std::string frame(const std::string& content);

} // namespace stencilor::lsp

#endif
