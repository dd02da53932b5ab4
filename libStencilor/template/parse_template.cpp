#include <libStencilor/host/byte_text.h>
#include <libStencilor/template/parse_template.h>
#include <libStencilor/template/template_grammar.h>

namespace kel::Stencilor::internal {

bool parseTemplate(const String& text, content_list& list) {
    return withLowerBytes(text, [&list](const char* bytes) { return parseTemplate(bytes, list); });
}

bool parseTemplate(const char* text, content_list& list) {
    return template_grammar(text).parse(list);
}

} // namespace kel::Stencilor::internal
