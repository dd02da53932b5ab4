#include <libStencilorAnalysis/check/ContextWalk.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>
#include <cassert>
#include <limits>
#include <optional>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

/// Contexts are not nested as deeply. The engine has a limit, too: the size of the stack.
constexpr std::size_t deepestInclusion = 600;

constexpr std::uint64_t mostSteps = 100'000'000;

/// A context with one value that remains another one's, also where rendering throws.
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

/// Only the engine knows.
bool isTrue(ContextBoolean& value) {
    const BorrowingContext context(value);
    return !buildOutput("{% if value %}x{% endif %}", context.get()).empty();
}

/// The engine's rule: the variable of a loop and a dot are taken from the front of a name.
std::string_view withoutPrefix(std::string_view name, std::string_view variable) {
    const bool prefixed =
        name.size() > variable.size() && name[variable.size()] == '.' && name.starts_with(variable);
    return prefixed ? name.substr(variable.size() + 1) : name;
}

ContextBase* elementOf(ContextIterable& list, std::size_t index) {
    // An index has 32 bits; a list of more elements takes 32 GiB, which no JSON text makes.
    assert(index <= std::numeric_limits<unsigned int>::max());
    return list[static_cast<unsigned int>(index)];
}

} // namespace

/// A block that is open.
struct ContextWalk::Block {
    std::size_t begin; // the index of the tag that opens it
    std::optional<ScopeStack::position> scope{};

    // Of a loop:
    std::string_view listName{};
    ContextIterable* list = nullptr;
    std::size_t iteration = 0; // from 0
    VariableStack::position variable{};
};

/// What holds inside one file. The variables of the loops around an inclusion do not.
struct ContextWalk::FileState {
    explicit FileState(std::string around = {}) : where(std::move(around)) {}

    std::string where; // the innermost loop around the inclusion
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
    if (++steps_ > mostSteps && extent_ == Extent::Whole) {
        report({.problem = Problem::TooLong, .file = &file, .part = &file.parts()[index]});
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
    const Value value = find(file.slice(part.name));
    if (value == nullptr) {
        report({.problem = Problem::NoString, .file = &file, .part = &part});
    } else if (dynamic_cast<const ContextString*>(value) == nullptr) {
        report({.problem = Problem::NotString, .file = &file, .part = &part, .value = value});
    }
}

std::size_t ContextWalk::openConditional(const TemplateFile& file, std::size_t index) {
    const SyntaxElement& part = file.parts()[index];
    const Value value = find(file.slice(part.name));
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

/// Comes after the first part of a condition; the second one has the same scope.
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
    const Value value = find(listName);
    auto* const list = dynamic_cast<ContextIterable*>(value);
    if (list == nullptr) {
        const Problem problem = value == nullptr ? Problem::NoList : Problem::NotList;
        report({.problem = problem, .file = &file, .part = &part, .value = value});
        return file.afterBlock(index);
    }
    if (list->size() == 0) {
        return file.afterBlock(index);
    }
    state().blocks.push_back({.begin = index,
                              .listName = listName,
                              .list = list,
                              .variable = state().variables.enter(file.slice(part.name))});
    return openIteration();
}

std::size_t ContextWalk::openIteration() {
    Block& loop = state().blocks.back();
    openScope(loop, elementOf(*loop.list, loop.iteration));
    return loop.begin + 1;
}

std::size_t ContextWalk::closeIteration(std::size_t index) {
    Block& loop = state().blocks.back();
    closeScope(loop);
    if (++loop.iteration < loop.list->size()) {
        return openIteration();
    }
    state().variables.leave(loop.variable);
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
    // A file that includes itself does so for another innermost scope each time, if it ever ends.
    const auto innermost = scopes_.newestFirst();
    const auto end = isOnPath(file) ? std::next(innermost) : scopes_.end();
    steps_ += static_cast<std::uint64_t>(end - innermost);
    return entered_.emplace(&file, std::vector<const ContextBase*>(innermost, end)).second;
}

/// An element may be null; it has no names then.
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

ContextWalk::Value ContextWalk::find(std::string_view name) {
    const VariableStack& variables = state().variables;
    for (auto scope = scopes_.newestFirst(); scope != scopes_.end(); ++scope) {
        for (auto variable = variables.newestFirst(); variable != variables.end(); ++variable) {
            if (const Value value = (*scope)->find(withoutPrefix(name, *variable))) {
                return value;
            }
            if (++steps_ > mostSteps && extent_ == Extent::Whole) {
                return nullptr; // the walk ends at the next tag
            }
        }
        if (const Value value = (*scope)->find(name)) {
            return value;
        }
    }
    return nullptr;
}

/// Which element of the innermost loop is visited.
std::string ContextWalk::describePlace() const {
    const auto& blocks = state().blocks;
    const auto loop = std::find_if(blocks.rbegin(), blocks.rend(),
                                   [](const Block& block) { return block.list != nullptr; });
    if (loop == blocks.rend()) {
        return state().where;
    }
    return " in element " + std::to_string(loop->iteration + 1) + " of " + quote(loop->listName);
}

void ContextWalk::report(Occurrence occurrence) const {
    occurrence.where = describePlace();
    report_(occurrence);
}

} // namespace kel::Stencilor::Analysis
