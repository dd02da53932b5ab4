#include <libStencilor/Template.h>
#include <libStencilor/modern/parsed_template.h>
#include <libStencilor/modern/render_template.h>

#include <utility>

namespace kel::Stencilor {

using internal::parsed_template;
using internal::render_state;

namespace {

const ContextBase& baseOf(const Context& context) {
    return context;
}

RenderResult renderParsed(const parsed_template& parsed, const ContextBase& context,
                          const std::function<void(std::string_view)>* write,
                          const RenderOptions& options) {
    render_state state(options);
    return renderTemplate(parsed, context, write, options, state);
}

/// The result of a render without a template.
RenderResult failToFind(const String& path, RenderStatus status, render_state& state) {
    state.addFileMessage(status, path);
    return state.takeResult(status);
}

} // namespace

Template::Template(String text, String name)
    : parsed_(std::make_shared<const parsed_template>(std::move(text), std::move(name))) {}

Template::Template(const Template& other) = default;
Template::Template(Template&& other) noexcept = default;
Template& Template::operator=(const Template& other) = default;
Template& Template::operator=(Template&& other) noexcept = default;
Template::~Template() = default;

bool Template::isWellFormed() const {
    return parsed_->names.has_value();
}

const SyntaxFault& Template::fault() const {
    return parsed_->fault;
}

const String& Template::name() const {
    return parsed_->name;
}

const String& Template::text() const {
    return parsed_->text;
}

RenderResult Template::render(const ContextBase& context, const RenderOptions& options) const {
    return renderParsed(*parsed_, context, nullptr, options);
}

RenderResult Template::render(const Value& values, const RenderOptions& options) const {
    return render(baseOf(Context(values)), options);
}

RenderResult Template::render(std::initializer_list<Value::Member> values,
                              const RenderOptions& options) const {
    return render(Value(values), options);
}

RenderResult Template::renderTo(const ContextBase& context,
                                const std::function<void(std::string_view)>& write,
                                const RenderOptions& options) const {
    return renderParsed(*parsed_, context, &write, options);
}

RenderResult Template::renderTo(const Value& values,
                                const std::function<void(std::string_view)>& write,
                                const RenderOptions& options) const {
    return renderTo(baseOf(Context(values)), write, options);
}

RenderResult Template::renderTo(std::initializer_list<Value::Member> values,
                                const std::function<void(std::string_view)>& write,
                                const RenderOptions& options) const {
    return renderTo(Value(values), write, options);
}

RenderResult renderFile(const String& path, const ContextBase& context,
                        const RenderOptions& options) {
    render_state state(options);
    const internal::included_template& found = state.findTemplate(path);
    switch (found.answer) {
    case TemplateSource::Answer::Found:
        break;
    case TemplateSource::Answer::Missing:
        return failToFind(path, RenderStatus::NotFound, state);
    case TemplateSource::Answer::Unreadable:
        return failToFind(path, RenderStatus::Unreadable, state);
    case TemplateSource::Answer::TooLarge:
        return failToFind(path, RenderStatus::TemplateLimit, state);
    }
    const parsed_template& parsed = internal::template_access::parsed(*found.found);
    return renderTemplate(parsed, context, nullptr, options, state);
}

RenderResult renderFile(const String& path, const Value& values, const RenderOptions& options) {
    return renderFile(path, baseOf(Context(values)), options);
}

RenderResult renderFile(const String& path, std::initializer_list<Value::Member> values,
                        const RenderOptions& options) {
    return renderFile(path, Value(values), options);
}

} // namespace kel::Stencilor
