#include <libStencilor/template/parse_template.h>
#include <libStencilor/template/template_grammar.h>

#include <string>

namespace kel::Stencilor::internal {

bool parseTemplate(const String& text, content_list& list) {
    const std::string narrow(text.getLowerByteString().c_str());
    return template_grammar(narrow).parse(list);
}

} // namespace kel::Stencilor::internal
