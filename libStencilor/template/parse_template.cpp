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
    return template_grammar(text.view().data()).parse(list);
}

} // namespace

bool parseTemplate(const String& text, content_list& list) {
    return parse(text, list);
}

} // namespace kel::Stencilor::internal
