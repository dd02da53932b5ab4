#include <libStencilor/template/parse_template.h>
#include <libStencilor/template/template_grammar.h>

namespace kel::Stencilor::internal {

bool parseTemplate(const String& text, content_list& list) {
    const CString narrow = text.getLowerByteString();
    return template_grammar(narrow.c_str()).parse(list);
}

} // namespace kel::Stencilor::internal
