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

/// The text of one call, for strings that contain UTF-8: everything is appended to one sink, which
/// becomes the result.
///
/// Each top-level node is decoded separately, so that malformed bytes at the end of one never
/// combine with those at the start of the next. Parts that are known to be well formed need no
/// decoding: the text of a well-formed template, because tags separate it at ASCII bytes, and
/// most values. A node is only decoded if other bytes were appended.
template <typename Text>
class joined_output {
  public:
    /// `wellFormed` is true if the source of the template is.
    explicit joined_output(bool wellFormed) : doubtful_(!wellFormed), wellFormed_(wellFormed) {}

    /// Reserves room for this number of bytes.
    void reserve(std::size_t size) { sink_.reserve(size); }

    /// Appends text of the template.
    void text(std::string_view text) { sink_.append(text); }

    /// Appends the text of a value up to its first NUL.
    void value(const Text& value) {
        const std::string_view text = value.view();
        if (!sink_.appendPlainIfRoom(text)) {
            bytes(upToNul(text));
        }
    }

    /// Appends bytes that may be malformed.
    void bytes(std::string_view bytes) {
        sink_.append(bytes);
        doubtful_ = doubtful_ || !Text::isUtf8(bytes);
    }

    /// As in `text_sink`: returns false, with nothing appended, if the bound or the bytes need the
    /// general case.
    /// @{
    bool textIfRoom(std::string_view text) { return sink_.appendIfRoom(text); }
    bool plainIfRoom(std::string_view bytes) { return sink_.appendPlainIfRoom(bytes); }
    template <typename Write>
    bool writeIfRoom(std::size_t most, Write write) {
        return sink_.writeIfRoom(most, write);
    }
    /// @}

    /// Sets how many bytes may be appended in total before these functions return false, and how
    /// many may be stored.
    void setBounds(std::uint64_t appended, std::uint64_t held) {
        sink_.setBound(std::min(appended - changed_, held));
    }

    /// How many bytes were appended, before any decoding.
    std::uint64_t appended() const noexcept { return changed_ + sink_.size(); }

    /// Begins an included template; `wellFormed` is true if all of its text is.
    void beginIncluded(bool wellFormed) { doubtful_ = doubtful_ || !wellFormed; }

    /// Ends a top-level node. Returns true if that may have changed the length of the text.
    bool endNode() {
        if (!doubtful_) {
            begin_ = sink_.size();
            return false;
        }
        decodeNode();
        begin_ = sink_.size();
        doubtful_ = !wellFormed_;
        return true;
    }

    Text take() { return sink_.take<Text>(); }

    std::size_t size() const noexcept { return sink_.size(); }

    /// Passes on everything except an incomplete character at the end.
    template <typename Write>
    void drain(Write write) {
        const std::string_view all = sink_.view();
        if (!doubtful_) {
            changed_ += all.size();
            write(all);
            sink_.clear();
            begin_ = 0;
            return;
        }
        const std::string unfinished(all.substr(all.size() - unfinishedSize(all.substr(begin_))));
        changed_ += all.size() - unfinished.size();
        write(all.substr(0, begin_));
        write(decode(all.substr(begin_, all.size() - begin_ - unfinished.size())).view());
        sink_.clear();
        sink_.append(unfinished);
        begin_ = 0;
    }

  private:
    static Text decode(std::string_view bytes) {
        Text decoded;
        decoded.UTF8Decode(bytes.data(), static_cast<unsigned int>(bytes.size()), false);
        return decoded;
    }

    void decodeNode() {
        const std::uint64_t before = appended();
        const Text decoded = decode(sink_.view().substr(begin_));
        sink_.truncate(begin_);
        sink_.append(decoded.view());
        changed_ = before - sink_.size();
    }

    /// The number of bytes of an incomplete character at the end, at most three.
    static std::size_t unfinishedSize(std::string_view bytes) {
        for (std::size_t size = 1; size <= 3 && size <= bytes.size(); ++size) {
            const auto byte = static_cast<unsigned char>(bytes[bytes.size() - size]);
            if (byte >= 0xC0) {
                const std::size_t whole = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
                return whole > size ? size : 0;
            }
        }
        return 0;
    }

    text_sink sink_;
    std::size_t begin_ = 0;     // of the top-level node
    std::uint64_t changed_ = 0; // the number of appended bytes minus the stored ones; may wrap
    bool doubtful_;             // true if the node may be malformed
    const bool wellFormed_;
};

/// The text of one call, for all other strings: values and top-level nodes are converted
/// individually.
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

    /// The text appended since the last node, in the form that an included template returns.
    Text takeIncluded() { return Text(sink_.c_str()); }

  private:
    text_sink sink_;
    Text rendered_;
};

template <typename Text>
using output_for = std::conditional_t<byte_text<Text>, joined_output<Text>, converted_output<Text>>;
using output = output_for<String>;

} // namespace kel::Stencilor::internal

#endif
