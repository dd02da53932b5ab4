#include <libStencilorAnalysis/names/Skeleton.h>
#include <libStencilorAnalysis/text/JsonText.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>
#include <deque>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

/// The number of dots in a name that become nested objects.
constexpr std::size_t mostDots = 32;

/// The maximum depth of list elements. A context has at most 512 levels, and the dots of a name
/// take some of them.
constexpr std::size_t deepestElement = 470;

constexpr std::size_t mostElements = 100; // for the names of one file

constexpr std::size_t deepestIndentation = 40;

bool hasEmptyPart(std::string_view name) {
    return name.starts_with('.') || name.ends_with('.') || name.find("..") != name.npos;
}

/// Calls `visit` for each prefix of a name that ends before one of its first dots, until it returns
/// true.
template <typename Visit>
bool anyPrefix(std::string_view name, const Visit& visit) {
    std::size_t dot = name.find('.');
    for (std::size_t count = 0; dot != name.npos && count < mostDots; ++count) {
        if (visit(name.substr(0, dot))) {
            return true;
        }
        dot = name.find('.', dot + 1);
    }
    return false;
}

/// The value of a name, or the element of a list.
struct Value {
    ValueKind kind = ValueKind::String;
    Value* element = nullptr; // of a list
    std::size_t level = 1;    // of the object that contains its members
    std::vector<std::pair<std::string_view, Value*>> members{};
    std::unordered_map<std::string_view, Value*> byName{};

    /// A prefix of the name may be a name itself.
    bool mayNest(std::string_view name) const {
        return !hasEmptyPart(name) && !anyPrefix(name, [this](std::string_view prefix) {
            return byName.contains(prefix);
        });
    }
};

/// An object in the output; its members are objects or values.
struct Outline {
    struct Member {
        std::string_view name;
        Outline* object;
        const Value* value;
    };

    std::vector<Member> members{};
    std::unordered_map<std::string_view, Outline*> objects{};
};

} // namespace

/// Owns and writes the values.
class Skeleton::Values {
  public:
    Value& root() { return values_.front(); }

    /// Returns a member of an object, and adds it if necessary.
    Value& get(Value& object, std::string_view name, ValueKind kind) {
        const auto [found, added] = object.byName.try_emplace(name, nullptr);
        if (added) {
            found->second = &values_.emplace_back(Value{.kind = kind});
            object.members.emplace_back(name, found->second);
        }
        return *found->second;
    }

    /// The element of a list, the member `name` of an object; null if it would be too deep.
    Value* elementOf(const Value& object, std::string_view name, Value& list) {
        if (list.element == nullptr && object.level < deepestElement) {
            const auto dots = static_cast<std::size_t>(std::count(name.begin(), name.end(), '.'));
            list.element = &values_.emplace_back();
            list.element->level = object.level + std::min(dots, mostDots) + 2;
        }
        return list.element;
    }

    std::string formatJson() {
        std::deque<Outline> outlines;
        std::vector<Open> open;
        std::string text;
        begin(values_.front(), false, outlines, open, text);
        while (!open.empty()) {
            Open& top = open.back();
            if (top.next == top.object->members.size()) {
                end(open, text);
                continue;
            }
            const Outline::Member& member = top.object->members[top.next++];
            text += top.next == 1 ? "\n" : ",\n";
            indent(open, text);
            text += jsonString(member.name) + ": ";
            if (member.object != nullptr) {
                open.push_back({member.object, 0, top.depth + 1, false});
                text += "{";
            } else if (member.value->kind == ValueKind::List && member.value->element != nullptr) {
                begin(*member.value->element, true, outlines, open, text);
            } else {
                text += member.value->kind == ValueKind::String    ? "\"\""
                        : member.value->kind == ValueKind::Boolean ? "true"
                                                                   : "[]";
            }
        }
        return text + "\n";
    }

  private:
    /// An object being written.
    struct Open {
        const Outline* object;
        std::size_t next;
        std::size_t depth; // of its members
        bool inList;
    };

    static void appendIndentation(std::size_t depth, std::string& text) {
        text.append(std::min(depth, deepestIndentation) * 2, ' ');
    }

    static void indent(const std::vector<Open>& open, std::string& text) {
        appendIndentation(open.back().depth, text);
    }

    static void begin(const Value& value, bool inList, std::deque<Outline>& outlines,
                      std::vector<Open>& open, std::string& text) {
        std::size_t depth = open.empty() ? 0 : open.back().depth;
        if (inList) {
            text += "[\n";
            appendIndentation(++depth, text);
        }
        text += "{";
        open.push_back({&outline(value, outlines), 0, depth + 1, inList});
    }

    static void end(std::vector<Open>& open, std::string& text) {
        const Open closed = open.back();
        open.pop_back();
        if (closed.next > 0) {
            text += '\n';
            appendIndentation(closed.depth - 1, text);
        }
        text += '}';
        if (closed.inList) {
            text += '\n';
            appendIndentation(closed.depth - 2, text);
            text += ']';
        }
    }

    /// The members of a value, with nested objects for dotted names.
    static Outline& outline(const Value& value, std::deque<Outline>& outlines) {
        Outline& all = outlines.emplace_back();
        for (const auto& [name, member] : value.members) {
            Outline* place = &all;
            std::size_t begin = 0;
            if (value.mayNest(name)) {
                anyPrefix(name, [&](std::string_view prefix) {
                    place = &objectIn(*place, prefix.substr(begin), outlines);
                    begin = prefix.size() + 1;
                    return false;
                });
            }
            place->members.push_back({name.substr(begin), nullptr, member});
        }
        return all;
    }

    static Outline& objectIn(Outline& place, std::string_view name, std::deque<Outline>& outlines) {
        const auto [found, added] = place.objects.try_emplace(name, nullptr);
        if (added) {
            found->second = &outlines.emplace_back();
            place.members.push_back({name, found->second, nullptr});
        }
        return *found->second;
    }

    std::deque<Value> values_{Value()}; // the outermost object first
};

/// Walks a template and its includes: each file once for each element around its includes.
class Skeleton::Builder {
  public:
    Builder(TemplateFiles& files, Values& values, std::vector<std::string>& conflicts)
        : files_(files), values_(values), conflicts_(conflicts) {}

    void build(const TemplateFile& file) {
        enter(file, &values_.root());
        while (!path_.empty()) {
            Visit& visit = path_.back();
            if (visit.next < visit.file->parts().size()) {
                visitPart(visit, visit.next++);
            } else {
                onPath_.erase(visit.file);
                path_.pop_back();
            }
        }
    }

  private:
    struct Loop {
        std::string_view variable;
        Value* element; // null if it is too deep
    };

    /// A file with one element around it.
    struct Visit {
        const TemplateFile* file;
        Value* object; // the parent of its names outside its own loops
        std::size_t next = 0;
        std::vector<Loop> loops{};
        std::unordered_map<std::string_view, std::vector<std::size_t>> byVariable{};
    };

    struct Owner {
        Value* object; // null if it is too deep
        std::string_view name;
    };

    void enter(const TemplateFile& file, Value* object) {
        if (object == nullptr || onPath_.contains(&file) ||
            !objectsOf_[&file].insert(object).second) {
            return;
        }
        if (objectsOf_[&file].size() > mostElements) {
            complain("more than " + std::to_string(mostElements) + " elements need the names in " +
                     quote(file.name()) + "; some of them lack the names here");
            return;
        }
        onPath_.insert(&file);
        path_.push_back({&file, object});
    }

    void visitPart(Visit& visit, std::size_t index) {
        const TemplateFile& file = *visit.file;
        const SyntaxElement& part = file.parts()[index];
        switch (part.kind) {
        case Kind::Substitution:
        case Kind::If:
            if (!part.name.isEmpty()) {
                addName(visit, nameOf(file, index));
            }
            break;
        case Kind::For:
            openLoop(visit, nameOf(file, index), file.slice(part.name));
            break;
        case Kind::EndFor:
            closeLoop(visit);
            break;
        case Kind::Include:
            if (const auto* const next = files_.include(std::string(file.slice(part.name))).file) {
                enter(*next, visit.loops.empty() ? visit.object : visit.loops.back().element);
            }
            break;
        default:
            break;
        }
    }

    Value* addName(const Visit& visit, const NameUse& use) {
        const Owner owner = findOwner(visit, use.text());
        if (owner.object == nullptr) {
            return nullptr;
        }
        Value& value = values_.get(*owner.object, owner.name, use.kind);
        if (value.kind != use.kind) {
            complain(quote(use.text()) + " is used as a " + kindName(value.kind) + " and as a " +
                     kindName(use.kind));
        }
        return use.kind == ValueKind::List ? values_.elementOf(*owner.object, owner.name, value)
                                           : nullptr;
    }

    static void closeLoop(Visit& visit) {
        const std::string_view variable = visit.loops.back().variable;
        if (!variable.empty()) {
            visit.byVariable[variable].pop_back();
        }
        visit.loops.pop_back();
    }

    void openLoop(Visit& visit, const NameUse& list, std::string_view variable) {
        if (variable.empty()) { // a malformed `for` has no names
            visit.loops.push_back(
                {variable, visit.loops.empty() ? visit.object : visit.loops.back().element});
            return;
        }
        Value* const element = addName(visit, list);
        if (element == nullptr) {
            complain("loops are nested deeper than a context can be; the inner ones are left out");
        }
        visit.byVariable[variable].push_back(visit.loops.size());
        visit.loops.push_back({variable, element});
    }

    /// The object that a name belongs to, and its name there.
    Owner findOwner(const Visit& visit, std::string_view name) {
        if (visit.loops.empty()) {
            return {visit.object, name};
        }
        const std::size_t* innermost = nullptr;
        anyPrefix(name, [&](std::string_view prefix) {
            const auto found = visit.byVariable.find(prefix);
            if (prefix.size() + 1 < name.size() && found != visit.byVariable.end() &&
                !found->second.empty() &&
                (innermost == nullptr || *innermost < found->second.back())) {
                innermost = &found->second.back();
            }
            return false;
        });
        if (innermost == nullptr) {
            return {&values_.root(), name};
        }
        const Loop& loop = visit.loops[*innermost];
        return {loop.element, name.substr(loop.variable.size() + 1)};
    }

    /// Once.
    void complain(std::string conflict) {
        if (known_.insert(conflict).second) {
            conflicts_.push_back(std::move(conflict));
        }
    }

    TemplateFiles& files_;
    Values& values_;
    std::vector<std::string>& conflicts_;
    std::unordered_set<std::string> known_; // of the conflicts
    std::vector<Visit> path_;
    std::unordered_set<const TemplateFile*> onPath_;
    std::unordered_map<const TemplateFile*, std::unordered_set<const Value*>> objectsOf_;
};

Skeleton::Skeleton() : values_(std::make_unique<Values>()) {}
Skeleton::~Skeleton() = default;

void Skeleton::visitTemplate(TemplateFiles& files, const TemplateFile& file) {
    Builder(files, *values_, conflicts_).build(file);
}

std::string Skeleton::formatJson() const {
    return values_->formatJson();
}

} // namespace kel::Stencilor::Analysis
