#ifndef LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H
#define LIBSTENCILORANALYSIS_TEXT_JSONTEXT_H

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kel::Stencilor::Analysis {

/// A JSON document with a line break at its end. Malformed UTF-8 becomes U+FFFD.
std::string jsonDocument(const nlohmann::ordered_json& document);

/// The same for a document whose last member, at any depth, is the empty list `member`. Puts in the
/// elements one by one, since many would take much memory as a document.
std::string jsonDocument(const nlohmann::ordered_json& document, std::string_view member,
                         std::size_t count,
                         const std::function<nlohmann::ordered_json(std::size_t)>& elementAt);

/// `text` as a string of JSON, in one line. Malformed UTF-8 becomes U+FFFD.
std::string jsonString(std::string_view text);

/// Writes a JSON document piece by piece, in the form of `jsonDocument`.
///
/// Memory: nothing but the text. A document of nlohmann-json takes much more, and ends the process
///   where there is none left when it is destroyed.
class JsonWriter {
  public:
    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }

    /// The name of the member whose value comes next.
    void name(std::string_view name);
    void string(std::string_view text);
    void number(std::size_t number);

    /// A member that is a text or a number.
    /// @{
    void member(std::string_view memberName, std::string_view text);
    void member(std::string_view memberName, std::size_t number);
    /// @}

    /// The document, after its last value.
    std::string take();

  private:
    void begin(char opening);
    void end(char closing);
    void startValue();
    void breakLine();

    std::string text_{};
    std::size_t depth_ = 0;
    bool isFirst_ = true; // in what was opened last
    bool isNamed_ = false;
};

} // namespace kel::Stencilor::Analysis

#endif
