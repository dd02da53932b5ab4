#include <tools/stencilor/context_walk.h>
#include <tools/stencilor/shown_text.h>

#include <algorithm>
#include <string_view>

namespace stencilor {

namespace {

using kel::Stencilor::ContextBase;
using kel::Stencilor::ContextBoolean;
using kel::Stencilor::ContextDictionary;
using kel::Stencilor::ContextIterable;
using kel::Stencilor::ContextString;
using Kind = SyntaxElement::Kind;

/// Contexts are not nested as deeply. The engine has a limit, too: the size of the stack.
constexpr std::size_t deepestInclusion = 600;

bool opens(Kind kind) {
    return kind == Kind::If || kind == Kind::For;
}

bool closes(Kind kind) {
    return kind == Kind::EndIf || kind == Kind::EndFor;
}

/// For each opening tag and each `else` the index of the tag that ends its part.
std::vector<std::size_t> findEnds(const std::vector<SyntaxElement>& parts) {
    std::vector<std::size_t> ends(parts.size());
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const Kind kind = parts[i].kind;
        if (kind == Kind::Else || closes(kind)) {
            ends[open.back()] = i;
            open.pop_back();
        }
        if (kind == Kind::Else || opens(kind)) {
            open.push_back(i);
        }
    }
    return ends;
}

/// A context with one value that stays another one's, also where rendering throws.
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

/// The truth of a value is for the engine to tell.
bool isTrue(ContextBoolean& value) {
    const BorrowingContext context(value);
    return !kel::Stencilor::buildOutput("{% if value %}x{% endif %}", context.get()).empty();
}

/// As the engine takes the variable of a loop and a dot from the front of a name.
std::string_view withoutPrefix(std::string_view name, std::string_view variable) {
    const bool prefixed =
        name.size() > variable.size() && name[variable.size()] == '.' && name.starts_with(variable);
    return prefixed ? name.substr(variable.size() + 1) : name;
}

} // namespace

using ScopeBefore = RecentStack<const ContextBase*>::Before;
using VariableBefore = RecentStack<std::string_view>::Before;

/// A part of a template that is gone through.
struct ContextWalk::Block {
    std::size_t begin;
    std::size_t end;
    std::size_t next;                    // of the parts in between
    const ContextBase* scope = nullptr;  // for a loop, of this turn
    const SyntaxElement* loop = nullptr; // its tag; null for other parts
    ContextIterable* list = nullptr;
    std::size_t turn = 0;
    bool entered = false;
    ScopeBefore scopeBefore{};
    VariableBefore variableBefore{};
};

/// A template that is gone through, with its open blocks.
struct ContextWalk::Activation {
    const TemplateFile& file;
    std::vector<std::size_t> ends;
    std::vector<Block> blocks;
    RecentStack<std::string_view> variables; // of the open loops
};

ContextWalk::ContextWalk(TemplateFiles& files, Extent extent, Report report)
    : files_(files), extent_(extent), report_(std::move(report)) {}

void ContextWalk::walk(const TemplateFile& file, const ContextBase& context) {
    const auto before = scopes_.enter(&context);
    walkFile(file);
    scopes_.leave(before);
}

void ContextWalk::walkFile(const TemplateFile& file) {
    active_.push_back(&file);
    const std::size_t size = file.parts().size();
    Activation current{file, findEnds(file.parts()), {{0, size, 0}}, {}};
    while (!current.blocks.empty() && !ended_) {
        Block& block = current.blocks.back();
        if (!block.entered) {
            enter(current);
        } else if (block.next < block.end) {
            visit(current, block.next++);
        } else {
            leave(current);
        }
    }
    active_.pop_back();
}

/// May add to the blocks, which then move.
void ContextWalk::visit(Activation& current, std::size_t index) {
    const SyntaxElement& part = current.file.parts()[index];
    switch (part.kind) {
    case Kind::Substitution: {
        const Value value = find(current, part.name);
        if (value == nullptr) {
            report(current, Problem::NoString, index);
        } else if (dynamic_cast<const ContextString*>(value) == nullptr) {
            report(current, Problem::NotString, index, value);
        }
        break;
    }
    case Kind::If:
        openConditional(current, index);
        break;
    case Kind::For:
        openLoop(current, index);
        break;
    case Kind::Include:
        include(current, index);
        break;
    default:
        break;
    }
}

void ContextWalk::openConditional(Activation& current, std::size_t index) {
    const std::size_t then = index;
    const std::size_t other = current.ends[then];
    const bool hasElse = current.file.parts()[other].kind == Kind::Else;
    const std::size_t end = hasElse ? current.ends[other] : other;
    current.blocks.back().next = end + 1;

    const Value value = find(current, current.file.parts()[index].name);
    auto* const boolean = dynamic_cast<ContextBoolean*>(value);
    if (boolean == nullptr) {
        report(current, value == nullptr ? Problem::NoBoolean : Problem::NotBoolean, index, value);
        return;
    }
    const bool whole = extent_ == Extent::Whole;
    const bool truth = !whole && isTrue(*boolean);
    // What is added last is gone through first.
    if (hasElse && (whole || !truth)) {
        current.blocks.push_back({other + 1, end, other + 1, value});
    }
    if (whole || truth) {
        current.blocks.push_back({then + 1, other, then + 1, value});
    }
}

void ContextWalk::openLoop(Activation& current, std::size_t index) {
    const SyntaxElement& part = current.file.parts()[index];
    const std::size_t end = current.ends[index];
    current.blocks.back().next = end + 1;

    const Value value = find(current, part.list);
    auto* const list = dynamic_cast<ContextIterable*>(value);
    if (list == nullptr) {
        report(current, value == nullptr ? Problem::NoList : Problem::NotList, index, value);
    } else if (list->size() > 0) {
        current.blocks.push_back({index + 1, end, index + 1, nullptr, &part, list});
    }
}

void ContextWalk::include(Activation& current, std::size_t index) {
    const SyntaxElement& part = current.file.parts()[index];
    const auto [file, exists] = files_.include(std::string(current.file.textOf(part.name)));
    if (file == nullptr) {
        report(current, exists ? Problem::UnreadableFile : Problem::NoFile, index);
    } else if (file->fault().isPresent()) {
        report(current, Problem::RejectedFile, index, nullptr, file);
    } else if (active_.size() > deepestInclusion) {
        report(current, Problem::TooDeep, index);
        ended_ = true;
    } else if (mayEnter(*file)) {
        const std::string around = std::exchange(where_, placeIn(current));
        walkFile(*file);
        where_ = around;
    }
}

bool ContextWalk::mayEnter(const TemplateFile& file) {
    if (extent_ == Extent::Rendered) {
        return true;
    }
    // A file that includes itself does so for another innermost scope each time, if it ever ends.
    const bool recursive = std::find(active_.begin(), active_.end(), &file) != active_.end();
    const Scopes& scopes = scopes_.items();
    return walked_.emplace(&file, recursive ? Scopes{scopes.back()} : scopes).second;
}

void ContextWalk::enter(Activation& current) {
    Block& block = current.blocks.back();
    if (block.loop != nullptr) {
        if (block.turn == 0) {
            block.variableBefore = current.variables.enter(current.file.textOf(block.loop->name));
        }
        // A list is in memory, or a JSON text of at most 4 GiB: it has fewer elements than that.
        block.scope = (*block.list)[static_cast<unsigned int>(block.turn)];
        block.next = block.begin;
    }
    if (block.scope != nullptr) {
        block.scopeBefore = scopes_.enter(block.scope);
    }
    block.entered = true;
}

void ContextWalk::leave(Activation& current) {
    Block& block = current.blocks.back();
    if (block.scope != nullptr) {
        scopes_.leave(block.scopeBefore);
    }
    if (block.loop != nullptr && ++block.turn < block.list->size()) {
        block.entered = false;
        return;
    }
    if (block.loop != nullptr) {
        current.variables.leave(block.variableBefore);
    }
    current.blocks.pop_back();
}

ContextWalk::Value ContextWalk::find(const Activation& current, SyntaxRange range) const {
    const std::string_view name = current.file.textOf(range);
    const auto& variables = current.variables.items();
    const Scopes& scopes = scopes_.items();
    for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
        for (auto variable = variables.rbegin(); variable != variables.rend(); ++variable) {
            if (const Value value = (*scope)->find(withoutPrefix(name, *variable))) {
                return value;
            }
        }
        if (const Value value = (*scope)->find(name)) {
            return value;
        }
    }
    return nullptr;
}

/// Which element of the innermost loop it is.
std::string ContextWalk::placeIn(const Activation& current) const {
    const auto loop = std::find_if(current.blocks.rbegin(), current.blocks.rend(),
                                   [](const Block& block) { return block.loop != nullptr; });
    if (loop == current.blocks.rend()) {
        return where_;
    }
    return " in element " + std::to_string(loop->turn + 1) + " of " +
           quote(current.file.textOf(loop->loop->list));
}

void ContextWalk::report(const Activation& current, Problem problem, std::size_t index, Value value,
                         const TemplateFile* rejected) const {
    report_(
        {problem, &current.file, &current.file.parts()[index], value, rejected, placeIn(current)});
}

} // namespace stencilor
