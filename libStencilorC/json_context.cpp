#include <libStencilor/value/number_text.h>
#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>
#include <libStencilorJson/json_grammar.h>
#include <libStencilorJson/json_value_maker.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace {

/// Lays out a JSON number with a fraction or an exponent like a double. Numbers far outside the
/// range of a double stay as they are.
std::string layOutNumber(std::string_view written) {
    const std::size_t mark = std::min(written.find_first_of("eE"), written.size());
    std::string_view exponent = written.substr(std::min(mark + 1, written.size()));
    exponent.remove_prefix(exponent.starts_with('+') ? 1 : 0); // `from_chars` rejects a plus sign
    int shift = 0;
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), shift);
    if (exponent.size() > 5) {
        return std::string(written);
    }

    const bool isNegative = written.starts_with('-');
    std::string digits(written.substr(isNegative ? 1 : 0, mark - (isNegative ? 1 : 0)));
    const std::size_t point = std::min(digits.find('.'), digits.size());
    digits.erase(point, 1);
    const std::size_t first = digits.find_first_not_of('0');
    if (first == std::string::npos) {
        return "0";
    }
    digits.erase(digits.find_last_not_of('0') + 1);
    const std::string text =
        layOut({digits.substr(first), static_cast<int>(point) - static_cast<int>(first) + shift});
    return isNegative ? "-" + text : text;
}

/// Creates a value from a JSON text that a program wrote for this library.
class MarkedValueMaker final : public ValueMaker {
  public:
    MarkedValueMaker(std::string_view text, bool hasShortNumbers, std::string_view rawMark)
        : ValueMaker(text), hasShortNumbers_(hasShortNumbers), rawMark_(rawMark) {}

    void number(std::string_view written, JsonRange range) override {
        if (hasShortNumbers_ && written.find_first_of(".eE") != std::string_view::npos) {
            addScalar(layOutNumber(written), range);
        } else {
            addScalar(written, range);
        }
    }

    void string(std::string_view text, JsonRange range) override {
        const bool isRaw = !rawMark_.empty() && text.starts_with(rawMark_);
        addScalar(isRaw ? Value::raw(text.substr(rawMark_.size())) : Value(text), range);
    }

  private:
    bool hasShortNumbers_;
    std::string_view rawMark_;
};

} // namespace

int stencilor_context_parse_json(const char* text, size_t size, int flags, const char* rawMark,
                                 size_t rawMarkSize, stencilor_context** context,
                                 stencilor_error** error) {
    return guarded(
        [&] {
            stencilor_context*& made = placeOf(context);
            constexpr int all = STENCILOR_CONTEXT_POSITIONS | STENCILOR_CONTEXT_SHORT_NUMBERS;
            failUnlessOk((flags & ~all) != 0 ? STENCILOR_INVALID_ARGUMENT : STENCILOR_OK);
            const std::string_view json = given(text, size);
            MarkedValueMaker maker(json, (flags & STENCILOR_CONTEXT_SHORT_NUMBERS) != 0,
                                   given(rawMark, rawMarkSize));
            JsonGrammar(json, maker).read();
            made = new stencilor_context{
                makeContext(maker.take(), (flags & STENCILOR_CONTEXT_POSITIONS) != 0)};
        },
        error);
}
