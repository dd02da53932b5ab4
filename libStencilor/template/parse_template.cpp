#include <libStencilor/host/byte_text.h>
#include <libStencilor/template/parse_template.h>
#include <libStencilor/template/template_grammar.h>

namespace kel::Stencilor::internal {

namespace {

template <typename Text>
bool parse(const Text& text, content_list& list) {
    const auto narrow = text.getLowerByteString();
    return template_grammar(narrow.c_str()).parse(list);
}

template <byte_text Text>
bool parse(const Text& text, content_list& list) {
    return parseTemplate(text.view().data(), list);
}

} // namespace

bool parseTemplate(const String& text, content_list& list) {
    return parse(text, list);
}

bool parseTemplate(const char* text, content_list& list) {
    return template_grammar(text).parse(list);
}

} // namespace kel::Stencilor::internal
