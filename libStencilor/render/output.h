#ifndef LIBSTENCILOR_RENDER_OUTPUT_H
#define LIBSTENCILOR_RENDER_OUTPUT_H

#include <libKel/String.h>
#include <libStencilor/host/byte_text.h>
#include <libStencilor/render/text_sink.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace kel::Stencilor::internal {

/// True if all of `text` is known to be well formed before it is decoded.
template <typename Text>
bool isWellFormed(const Text& text) {
    if constexpr (byte_text<Text>) {
        return Text::isUtf8(text.view());
    } else {
        return false;
    }
}

/// The part of `bytes` before its first NUL.
inline std::string_view upToNul(std::string_view bytes) {
    return bytes.substr(0, bytes.find('\0'));
}

/// The text of one call, for strings that hold UTF-8: everything is appended to one sink, and the
/// sink becomes the result.
///
/// Each top-level node is decoded on its own, so that malformed bytes at the end of one never join
/// those at the start of the next. What is known to be well formed on its own needs no decoding:
/// the texts of a well-formed template, since tags divide it at ASCII bytes, and most values. A
/// node is decoded only where something else was appended.
template <typename Text>
class joined_output {
  public:
    /// `wellFormed` is true if the source of the template is.
    explicit joined_output(bool wellFormed) : doubtful_(!wellFormed), wellFormed_(wellFormed) {}

    /// Appends a text of the template.
    void text(std::string_view text) { sink_.append(text); }

    /// Appends the text of a value up to its first NUL.
    void value(const Text& value) {
        if (!sink_.appendPlain(value.view())) {
            bytes(upToNul(value.view()));
        }
    }

    /// Appends bytes that may be malformed.
    void bytes(std::string_view bytes) {
        sink_.append(bytes);
        doubtful_ = doubtful_ || !Text::isUtf8(bytes);
    }

    /// Begins an included template, whose texts are `wellFormed` or not.
    void beginIncluded(bool wellFormed) { doubtful_ = doubtful_ || !wellFormed; }

    /// Ends a top-level node.
    void endNode() {
        if (doubtful_) {
            decodeNode();
        }
        begin_ = sink_.size();
        doubtful_ = !wellFormed_;
    }

    Text take() { return sink_.take<Text>(); }

  private:
    void decodeNode() {
        Text decoded;
        const std::string_view node = sink_.view().substr(begin_);
        decoded.UTF8Decode(node.data(), static_cast<unsigned int>(node.size()), false);
        sink_.truncate(begin_);
        sink_.append(decoded.view());
    }

    text_sink sink_;
    std::size_t begin_ = 0; // of the top-level node
    bool doubtful_;         // whether the node may be malformed
    const bool wellFormed_;
};

/// The text of one call, for all other strings: values and top-level nodes are converted as they
/// come.
template <typename Text>
class converted_output {
  public:
    explicit converted_output(bool) {}

    void text(std::string_view text) { sink_.append(text); }
    void value(const Text& value) { sink_.append(value.getUTF8String().c_str()); }

    void endNode() {
        Text decoded;
        const std::string_view node = sink_.view();
        decoded.UTF8Decode(node.data(), static_cast<unsigned int>(node.size()), false);
        rendered_ += decoded;
        sink_.clear();
    }

    Text take() { return std::move(rendered_); }

    /// What was appended since the last node, as an included template hands it over.
    Text takeIncluded() { return Text(sink_.c_str()); }

  private:
    text_sink sink_;
    Text rendered_;
};

using output =
    std::conditional_t<byte_text<String>, joined_output<String>, converted_output<String>>;

} // namespace kel::Stencilor::internal

#endif
