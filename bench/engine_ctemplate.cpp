#include "engines.h"

#include <ctemplate/template.h>

#include <stdexcept>

namespace bench {

namespace {

void fill(ctemplate::TemplateDictionary& dictionary, const object& data);

/// One member of an object. The engine knows no `else`: where a workload needs one, its template
/// has a second section, named with `not_` in front.
struct member_filler {
    void operator()(const std::string& text) const { dictionary.SetValue(name, text); }
    void operator()(bool truth) const { dictionary.ShowSection(truth ? name : "not_" + name); }
    void operator()(const list& elements) const {
        for (const value& element : elements) {
            fill(*dictionary.AddSectionDictionary(name), std::get<object>(element.held));
        }
    }
    void operator()(const object&) const { throw std::logic_error("no workload nests objects"); }

    ctemplate::TemplateDictionary& dictionary;
    const std::string& name;
};

void fill(ctemplate::TemplateDictionary& dictionary, const object& data) {
    for (const auto& [name, member] : data) {
        std::visit(member_filler{dictionary, name}, member.held);
    }
}

} // namespace

renderer ctemplateRenderer(const std::string& templateText, const object& data, parsing when) {
    using parsed = std::unique_ptr<ctemplate::Template>;
    const auto parse = [](const std::string& text) {
        return parsed(ctemplate::Template::StringToTemplate(text, ctemplate::DO_NOT_STRIP));
    };
    struct state {
        std::string text;
        ctemplate::TemplateDictionary dictionary{"bench"};
        parsed beforehand;
        std::string output;
    };
    auto shared = std::make_shared<state>();
    shared->text = templateText;
    fill(shared->dictionary, data);
    if (when == parsing::beforehand) {
        shared->beforehand = parse(templateText);
    }
    return {
        [shared, parse] {
            const parsed inThisCall = shared->beforehand ? nullptr : parse(shared->text);
            std::string output;
            (inThisCall ? inThisCall : shared->beforehand)->Expand(&output, &shared->dictionary);
            shared->output = std::move(output);
            return shared->output.size();
        },
        [shared] { return shared->output; }};
}

} // namespace bench
