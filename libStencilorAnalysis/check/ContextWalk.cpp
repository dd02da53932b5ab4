#include <libStencilor/Template.h>
#include <libStencilor/context/context_access.h>
#include <libStencilorAnalysis/check/ContextWalk.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>
#include <cassert>
#include <limits>
#include <optional>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

/// No context is nested this deeply. The engine is limited, too, by the size of the stack.
constexpr std::size_t deepestInclusion = 600;

/// A context with one borrowed value, which it releases even if rendering throws.
class BorrowingContext {
  public:
    explicit BorrowingContext(ContextBase& value) : slot_(context_["value"]) { slot_ = &value; }
    BorrowingContext(const BorrowingContext&) = delete;
    BorrowingContext& operator=(const BorrowingContext&) = delete;
    ~BorrowingContext() { slot_ = nullptr; }

    const ContextBase& get() const { return context_; }

  private:
    ContextDictionary context_;
    ContextBase*& slot_;
};

/// Only the engine can read the value.
bool isTrue(ContextBoolean& value) {
    static const Template question("{% if value %}x{% endif %}");
    const BorrowingContext context(value);
    return !question.render(context.get()).text.empty();
}

/// The engine's rule: a loop variable and a dot are removed from the front of a name.
std::string_view withoutPrefix(std::string_view name, std::string_view variable) {
    const bool prefixed =
        name.size() > variable.size() && name[variable.size()] == '.' && name.starts_with(variable);
    return prefixed ? name.substr(variable.size() + 1) : name;
}

ContextBase* elementOf(ContextIterable& list, std::size_t index) {
    // An index has 32 bits; a longer list takes 32 GiB, more than any JSON text can produce.
    assert(index <= std::numeric_limits<unsigned int>::max());
    return list[static_cast<unsigned int>(index)];
}

} // namespace

/// An open block.
struct ContextWalk::Block {
    std::size_t begin; // the index of its opening tag
    std::optional<ScopeStack::position> scope{};

    // Of a loop:
    std::string_view listName{};
    std::string_view variable{};
    ContextIterable* list = nullptr;
    std::size_t iteration = 0;        // from 0
    VariableStack::position before{}; // of the variable

    const ContextBase* element() const { return elementOf(*list, iteration); }
};

/// The state inside one file. Variables of loops around an include do not apply in it.
struct ContextWalk::FileState {
    explicit FileState(std::string around = {}) : where(std::move(around)) {}

    std::string where; // the innermost loop around the include
    std::vector<Block> blocks{};
    VariableStack variables{};
};

ContextWalk::ContextWalk(TemplateFiles& files, Extent extent, Report report)
    : TemplateWalk(files), extent_(extent), report_(std::move(report)) {}

ContextWalk::~ContextWalk() = default;

void ContextWalk::walk(const TemplateFile& file, const ContextBase& context) {
    const ScopeStack::position before = scopes_.enter(&context);
    states_.push_back(std::make_unique<FileState>());
    walkFile(file);
    scopes_.leave(before);
}

void ContextWalk::enter(const TemplateFile& file) {
    states_.push_back(std::make_unique<FileState>(describePlace()));
    enterFile(file);
}

void ContextWalk::leaveFile() {
    states_.pop_back();
}

std::size_t ContextWalk::visit(const TemplateFile& file, std::size_t index) {
    ++steps_;
    if (!hasStepsLeft()) {
        report({.problem = Problem::TooLong, .file = &file, .part = &file.parts()[index]});
        return index + 1;
    }
    if (limits_.goOn && ++visits_ % 1024 == 0 && !limits_.goOn()) {
        stop();
        return index + 1;
    }
    switch (file.parts()[index].kind) {
    case Kind::Substitution:
        visitSubstitution(file, file.parts()[index]);
        return index + 1;
    case Kind::If:
        return openConditional(file, index);
    case Kind::Else:
        return passElse(file, index);
    case Kind::EndIf:
        return closeConditional(index);
    case Kind::For:
        return openLoop(file, index);
    case Kind::EndFor:
        return closeIteration(index);
    default:
        return index + 1;
    }
}

void ContextWalk::visitSubstitution(const TemplateFile& file, const SyntaxElement& part) {
    const Value value = lookUp(file, part, part.name);
    if (value == nullptr) {
        report({.problem = Problem::NoString, .file = &file, .part = &part});
    } else if (dynamic_cast<const ContextString*>(value) == nullptr) {
        report({.problem = Problem::NotString, .file = &file, .part = &part, .value = value});
    }
}

std::size_t ContextWalk::openConditional(const TemplateFile& file, std::size_t index) {
    const SyntaxElement& part = file.parts()[index];
    const Value value = lookUp(file, part, part.name);
    auto* const boolean = dynamic_cast<ContextBoolean*>(value);
    if (boolean == nullptr) {
        const Problem problem = value == nullptr ? Problem::NoBoolean : Problem::NotBoolean;
        report({.problem = problem, .file = &file, .part = &part, .value = value});
        return file.afterBlock(index);
    }
    const bool then = extent_ == Extent::Whole || isTrue(*boolean);
    const std::size_t end = file.endOf(index);
    if (!then && file.parts()[end].kind != Kind::Else) {
        return end + 1;
    }
    state().blocks.push_back({.begin = index});
    openScope(state().blocks.back(), boolean);
    return (then ? index : end) + 1;
}

/// Called after the first part of a condition; the second part has the same scope.
std::size_t ContextWalk::passElse(const TemplateFile& file, std::size_t index) const {
    return extent_ == Extent::Whole ? index + 1 : file.endOf(index);
}

std::size_t ContextWalk::closeConditional(std::size_t index) {
    closeScope(state().blocks.back());
    state().blocks.pop_back();
    return index + 1;
}

std::size_t ContextWalk::openLoop(const TemplateFile& file, std::size_t index) {
    const SyntaxElement& part = file.parts()[index];
    const std::string_view listName = file.slice(part.list);
    const Value value = lookUp(file, part, part.list);
    auto* const list = dynamic_cast<ContextIterable*>(value);
    if (list == nullptr) {
        const Problem problem = value == nullptr ? Problem::NoList : Problem::NotList;
        report({.problem = problem, .file = &file, .part = &part, .value = value});
        return file.afterBlock(index);
    }
    if (list->size() == 0) {
        return file.afterBlock(index);
    }
    const std::string_view variable = file.slice(part.name);
    state().blocks.push_back({.begin = index,
                              .listName = listName,
                              .variable = variable,
                              .list = list,
                              .before = state().variables.enter(variable)});
    return openIteration();
}

std::size_t ContextWalk::openIteration() {
    Block& loop = state().blocks.back();
    openScope(loop, loop.element());
    return loop.begin + 1;
}

std::size_t ContextWalk::closeIteration(std::size_t index) {
    Block& loop = state().blocks.back();
    closeScope(loop);
    if (++loop.iteration < loop.list->size()) {
        return openIteration();
    }
    state().variables.leave(loop.before);
    state().blocks.pop_back();
    return index + 1;
}

void ContextWalk::visitInclusion(const Inclusion& inclusion) {
    const TemplateFile* const file = inclusion.to.file;
    Occurrence occurrence{.problem = Problem::NoFile,
                          .file = &inclusion.from,
                          .part = &inclusion.part,
                          .inclusion = &inclusion.to};
    if (file == nullptr) {
        report(occurrence);
    } else if (file->fault().isPresent()) {
        occurrence.problem = Problem::RejectedFile;
        report(occurrence);
    } else if (path().size() > deepestInclusion) {
        occurrence.problem = Problem::TooDeep;
        report(occurrence);
        stop();
    } else if (shallEnter(*file)) {
        enter(*file);
    }
}

bool ContextWalk::shallEnter(const TemplateFile& file) {
    if (extent_ == Extent::Rendered) {
        return true;
    }
    // If the recursion of a file ends, each include has a different innermost scope.
    const auto innermost = scopes_.newestFirst();
    const auto end = isOnPath(file) ? std::next(innermost) : scopes_.end();
    steps_ += static_cast<std::uint64_t>(end - innermost);
    return entered_.emplace(&file, std::vector<const ContextBase*>(innermost, end)).second;
}

/// A null element has no names.
void ContextWalk::openScope(Block& block, const ContextBase* scope) {
    if (scope != nullptr) {
        block.scope = scopes_.enter(scope);
    }
}

void ContextWalk::closeScope(Block& block) {
    if (block.scope) {
        scopes_.leave(*block.scope);
        block.scope.reset();
    }
}

ContextWalk::Value ContextWalk::lookUp(const TemplateFile& file, const SyntaxElement& part,
                                       SyntaxRange range) {
    const std::string_view name = file.slice(range);
    const ContextBase* answering = nullptr;
    const Value value = find(name, &answering);
    if (value != nullptr && extent_ == Extent::Whole) {
        if (const OtherLoop other = findOtherLoop(name, answering); other.tag != nullptr) {
            report(
                {.problem = Problem::OtherLoop, .file = &file, .part = &part, .otherLoop = other});
        }
    }
    return value;
}

/// @param answering if not null, receives the scope in which the value was found
/// @return null also if no steps are left
ContextWalk::Value ContextWalk::find(std::string_view name, const ContextBase** answering) {
    const auto answer = [answering](const ContextBase* scope, Value value) {
        if (answering != nullptr) {
            *answering = scope;
        }
        return value;
    };
    const VariableStack& variables = state().variables;
    for (auto scope = scopes_.newestFirst(); scope != scopes_.end() && hasStepsLeft(); ++scope) {
        for (auto variable = variables.newestFirst(); variable != variables.end(); ++variable) {
            if (const Value value = findIn(**scope, withoutPrefix(name, *variable))) {
                return answer(*scope, value);
            }
        }
        if (const Value value = findIn(**scope, name)) {
            return answer(*scope, value);
        }
    }
    return nullptr;
}

ContextWalk::Value ContextWalk::findIn(const ContextBase& scope, std::string_view key) {
    constexpr std::size_t bytesPerStep = 4096;
    steps_ += key.size() / bytesPerStep;
    const Value value = hasStepsLeft() ? scope.find(key) : nullptr;
    steps_ += value == nullptr ? 1 : 0;
    return value;
}

/// The engine removes a prefix in every scope, not only in that of the variable's loop.
OtherLoop ContextWalk::findOtherLoop(std::string_view name, const ContextBase* answering) {
    if (name.find('.') == name.npos) {
        return {};
    }
    const auto& blocks = state().blocks;
    const auto named = std::find_if(blocks.rbegin(), blocks.rend(), [&](const Block& block) {
        ++steps_;
        return block.list != nullptr && withoutPrefix(name, block.variable).size() < name.size();
    });
    if (named == blocks.rend() || named->element() == answering) {
        return {};
    }
    for (std::size_t depth = states_.size(); depth > 0; --depth) {
        const auto& around = states_[depth - 1]->blocks;
        for (auto block = around.rbegin(); block != around.rend(); ++block, ++steps_) {
            if (block->list != nullptr && block->element() == answering) {
                const TemplateFile& file = *path()[depth - 1];
                return {.file = &file,
                        .tag = &file.parts()[block->begin],
                        .element = block->iteration,
                        .isInside = depth == states_.size() && block < named};
            }
        }
    }
    return {};
}

/// The element of the innermost loop that is being visited.
std::string ContextWalk::describePlace() const {
    const auto& blocks = state().blocks;
    const auto loop = std::find_if(blocks.rbegin(), blocks.rend(),
                                   [](const Block& block) { return block.list != nullptr; });
    if (loop == blocks.rend()) {
        return state().where;
    }
    return " in element " + std::to_string(loop->iteration + 1) + " of " + quote(loop->listName);
}

/// If no steps are left, a name only seems to be missing.
void ContextWalk::report(Occurrence occurrence) {
    if (!hasStepsLeft()) {
        occurrence.problem = Problem::TooLong;
        stop();
    }
    occurrence.where = describePlace();
    report_(occurrence);
}

// Suggestions.

namespace {

/// The number of innermost scopes that are searched for suggestions.
constexpr int mostScopes = 32;

bool isOfKind(const ContextBase& value, Problem problem) {
    switch (problem) {
    case Problem::NoBoolean:
    case Problem::NotBoolean:
        return dynamic_cast<const ContextBoolean*>(&value) != nullptr;
    case Problem::NoList:
    case Problem::NotList:
        return dynamic_cast<const ContextIterable*>(&value) != nullptr;
    default:
        return dynamic_cast<const ContextString*>(&value) != nullptr;
    }
}

std::string loopOver(std::string_view list, std::string_view member) {
    return "; " + quote(list) + " is a list, so loop over it: {% for x in " + shorten(list) +
           " %}{{ x." + shorten(member) + " }}{% endfor %}";
}

} // namespace

ContextWalk::Suggestion ContextWalk::suggest(const Occurrence& found) {
    const bool ofList = found.problem == Problem::NoList || found.problem == Problem::NotList;
    const std::string name(found.file->slice(ofList ? found.part->list : found.part->name));
    Suggestion suggestion;
    if (found.value == nullptr) {
        suggestion = suggestForVariable(found, name);
        if (suggestion.text.empty()) {
            suggestion.text = suggestLoop(name);
        }
    }
    if (suggestion.text.empty() && found.problem == Problem::NotString &&
        dynamic_cast<const ContextIterable*>(found.value) != nullptr) {
        return {"; loop over it: {% for x in " + shorten(name) + " %}...{% endfor %}"};
    }
    if (suggestion.text.empty()) {
        suggestion.name = findSimilar(name, found.problem);
        suggestion.text = suggestion.name.empty() ? "" : didYouMean(suggestion.name);
    }
    return suggestion;
}

bool ContextWalk::isFound(const std::string& name, Problem problem) {
    const ContextBase* answering = nullptr;
    const Value value = find(name, &answering);
    return value != nullptr && isOfKind(*value, problem) &&
           findOtherLoop(name, answering).tag == nullptr;
}

/// A loop variable is only a prefix.
ContextWalk::Suggestion ContextWalk::suggestForVariable(const Occurrence& found,
                                                        const std::string& name) {
    const auto& blocks = state().blocks;
    const auto loop = std::find_if(blocks.rbegin(), blocks.rend(), [&](const Block& block) {
        return block.list != nullptr && block.variable == name;
    });
    if (loop == blocks.rend()) {
        return {};
    }
    std::string text = "; " + quote(name) + " is a loop variable, which is only a prefix";
    const ContextBase* const element = loop->element();
    if (element == nullptr) {
        return {text};
    }
    const auto isHidden = [&](const String& key) { // by the element of an inner loop
        return std::any_of(blocks.rbegin(), loop, [&key](const Block& inside) {
            const ContextBase* const other = inside.list == nullptr ? nullptr : inside.element();
            return other != nullptr && other->find(key) != nullptr;
        });
    };
    for (const bool asValue : {true, false}) {
        for (const auto& [key, value] : internal::context_access::children(*element)) {
            const std::string member = name + "." + key.str();
            if ((key.view() == "value") == asValue && value != nullptr &&
                isOfKind(*value, found.problem) && !isHidden(key) && find(member) == value) {
                return {text + (asValue ? ": write " : ": write a member, such as ") +
                            quote(member),
                        asValue ? member : ""};
            }
        }
    }
    return {element->find("value") == nullptr
                ? text
                : text + ", and an inner loop hides " + quote(name + ".value") +
                      ": in the context, give the elements their own keys"};
}

/// A prefix of the name may be a list.
std::string ContextWalk::suggestLoop(const std::string& name) {
    std::size_t dot = name.rfind('.');
    for (int count = 0; dot != name.npos && dot > 0 && count < mostScopes; ++count) {
        const std::string list = name.substr(0, dot);
        if (dynamic_cast<const ContextIterable*>(find(list)) != nullptr) {
            return loopOver(list, std::string_view(name).substr(dot + 1));
        }
        dot = name.rfind('.', dot - 1);
    }
    return "";
}

/// A name with a similar spelling, or with additional prefixes.
std::string ContextWalk::findSimilar(const std::string& name, Problem problem) {
    std::vector<std::string_view> prefixes = {""}; // removed before a name is looked up
    for (auto variable = state().variables.newestFirst();
         variable != state().variables.end() && prefixes.size() < mostScopes; ++variable) {
        const std::string_view rest = withoutPrefix(name, *variable);
        if (rest.size() < name.size()) {
            prefixes.push_back(std::string_view(name).substr(0, name.size() - rest.size()));
        }
    }
    int count = 0;
    for (auto scope = scopes_.newestFirst(); scope != scopes_.end() && count < mostScopes;
         ++scope, ++count) {
        const ScopeWords& words = wordsOf(**scope);
        for (const std::string_view prefix : prefixes) {
            const std::string_view word =
                words.all.findNearest(std::string_view(name).substr(prefix.size()));
            const std::string meant = std::string(prefix) + std::string(word);
            if (!word.empty() && isFound(meant, problem)) {
                return meant;
            }
        }
        const auto longer = words.byEnd.find(name);
        if (longer != words.byEnd.end() && isFound(std::string(longer->second), problem)) {
            return std::string(longer->second);
        }
    }
    const std::size_t dot = name.find('.');
    const std::string rest = name.substr(dot == name.npos ? name.size() : dot + 1);
    return !rest.empty() && isFound(rest, problem) ? rest : "";
}

const ContextWalk::ScopeWords& ContextWalk::wordsOf(const ContextBase& scope) {
    const auto [known, added] = words_.try_emplace(&scope);
    if (added) {
        for (const auto& [key, value] : internal::context_access::children(scope)) {
            const std::string_view name = key.view();
            known->second.all.add(name);
            if (const std::size_t dot = name.rfind('.'); dot != name.npos) {
                known->second.byEnd.emplace(name.substr(dot + 1), name);
            }
        }
    }
    return known->second;
}

} // namespace kel::Stencilor::Analysis
