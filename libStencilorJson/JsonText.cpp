#include <libStencilorJson/JsonText.h>
#include <libStencilorJson/json_grammar.h>
#include <libStencilorJson/json_value_maker.h>

namespace kel::Stencilor {

JsonError::JsonError(std::size_t line, std::size_t column, const std::string& reason,
                     std::size_t offset)
    : std::runtime_error(std::to_string(line) + ":" + std::to_string(column) + ": " + reason),
      line_(line), column_(column), offset_(offset),
      reasonBegin_(std::string_view(what()).size() - reason.size()) {}

JsonError::JsonError(const std::string& reason) : std::runtime_error(reason) {}

Value valueFromJsonText(std::string_view text) {
    internal::ValueMaker maker(text);
    internal::JsonGrammar(text, maker).read();
    return maker.take();
}

} // namespace kel::Stencilor
