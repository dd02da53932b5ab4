#ifndef LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H
#define LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// Formats a JSON document, with a line break at the end. Malformed UTF-8 becomes U+FFFD.
std::string jsonDocument(const nlohmann::ordered_json& document);

/// The same for a document whose last member, at any depth, is the empty array `member`. Inserts
/// the elements one by one, because a document with many of them would take a lot of memory.
std::string jsonDocument(const nlohmann::ordered_json& document, std::string_view member,
                         std::size_t count,
                         const std::function<nlohmann::ordered_json(std::size_t)>& elementAt);

/// `text` as a JSON string on one line. Malformed UTF-8 becomes U+FFFD.
std::string jsonString(std::string_view text);

/// Writes a JSON document incrementally, in the format of `jsonDocument`.
///
/// Memory: only the text. An nlohmann-json document takes much more, and terminates the process
///   if memory is exhausted when it is destroyed.
class JsonWriter {
  public:
    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }

    /// The name of the next member.
    void name(std::string_view name);
    void string(std::string_view text);
    void number(std::size_t number);

    /// A member with a string or a number.
    /// @{
    void member(std::string_view memberName, std::string_view text);
    void member(std::string_view memberName, std::size_t number);
    /// @}

    /// Returns the document, after its last value.
    std::string take();

  private:
    void begin(char opening);
    void end(char closing);
    void startValue();
    void breakLine();

    std::string text_{};
    std::size_t depth_ = 0;
    bool isFirst_ = true; // in the innermost array or object
    bool isNamed_ = false;
};

} // namespace kel::Stencilor::Analysis

#endif
