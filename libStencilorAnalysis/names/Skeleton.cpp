#include <libStencilorAnalysis/names/Skeleton.h>
#include <libStencilorAnalysis/text/JsonText.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Json = nlohmann::ordered_json;

/// Every beginning of `name` that ends before a dot.
std::vector<std::string> findPrefixes(const std::string& name) {
    std::vector<std::string> prefixes;
    for (std::size_t dot = name.find('.'); dot != name.npos; dot = name.find('.', dot + 1)) {
        prefixes.push_back(name.substr(0, dot));
    }
    return prefixes;
}

bool hasEmptyPart(const std::string& name) {
    return name.starts_with('.') || name.ends_with('.') || name.find("..") != name.npos;
}

} // namespace

/// An object, the element of a list, or the value of a name.
struct Skeleton::Value {
    ValueKind kind = ValueKind::String;
    std::vector<std::pair<std::string, std::unique_ptr<Value>>> members{};
    std::unique_ptr<Value> element{};

    Value* find(std::string_view name) const {
        const auto found = std::find_if(members.begin(), members.end(), [name](const auto& member) {
            return member.first == name;
        });
        return found == members.end() ? nullptr : found->second.get();
    }

    /// The member of that name, which is added where there is none.
    Value& get(std::string_view name, ValueKind newKind) {
        if (Value* const found = find(name)) {
            return *found;
        }
        auto value = std::make_unique<Value>();
        value->kind = newKind;
        if (newKind == ValueKind::List) {
            value->element = std::make_unique<Value>();
        }
        members.emplace_back(name, std::move(value));
        return *members.back().second;
    }

    Json describeMembers() const {
        Json object = Json::object();
        for (const auto& [name, value] : members) {
            Json* place = &object;
            std::string rest = name;
            if (mayNest(name)) {
                for (std::size_t dot = rest.find('.'); dot != rest.npos; dot = rest.find('.')) {
                    place = &(*place)[rest.substr(0, dot)];
                    rest.erase(0, dot + 1);
                }
            }
            (*place)[rest] = value->describe();
        }
        return object;
    }

    Json describe() const {
        switch (kind) {
        case ValueKind::String:
            return "";
        case ValueKind::Boolean:
            return true;
        case ValueKind::List:
            break;
        }
        return Json::array({element->describeMembers()});
    }

    bool mayNest(const std::string& name) const {
        const std::vector<std::string> prefixes = findPrefixes(name);
        return !hasEmptyPart(name) &&
               std::none_of(prefixes.begin(), prefixes.end(),
                            [this](const std::string& prefix) { return find(prefix) != nullptr; });
    }
};

/// The object that a name belongs to, and what it is called there.
struct Skeleton::Owner {
    Value* object;
    std::string_view name;
};

Skeleton::Skeleton() : root_(std::make_unique<Value>()) {}
Skeleton::~Skeleton() = default;

void Skeleton::visitName(const NameUse& use) {
    const Owner owner = findOwner(use.text(), use.loops, use.loops.size(), use.inclusions);
    const ValueKind first = owner.object->get(owner.name, use.kind).kind;
    if (first == use.kind) {
        return;
    }
    const std::string conflict = quote(use.text()) + " is asked for as a " + kindName(first) +
                                 " and as a " + kindName(use.kind);
    if (std::find(conflicts_.begin(), conflicts_.end(), conflict) == conflicts_.end()) {
        conflicts_.push_back(conflict);
    }
}

std::string Skeleton::formatJson() const {
    return jsonDocument(root_->describeMembers());
}

/// `count` is how many of the loops are around the name.
Skeleton::Owner Skeleton::findOwner(std::string_view name, const std::vector<Loop>& loops,
                                    std::size_t count, std::size_t inclusions) {
    bool inOwnLoop = false;
    for (std::size_t i = count; i-- > 0 && loops[i].inclusions == inclusions;) {
        const std::string& variable = loops[i].variable;
        inOwnLoop = true;
        if (name.size() > variable.size() + 1 && name.starts_with(variable + ".")) {
            return {&elementOf(loops, i), name.substr(variable.size() + 1)};
        }
    }
    if (count == 0 || inOwnLoop) {
        return {root_.get(), name};
    }
    return {&elementOf(loops, count - 1), name};
}

/// The element of the list that a loop walks.
Skeleton::Value& Skeleton::elementOf(const std::vector<Loop>& loops, std::size_t index) {
    const Loop& loop = loops[index];
    const Owner owner = findOwner(loop.list, loops, index, loop.inclusions);
    Value& list = owner.object->get(owner.name, ValueKind::List);
    if (list.element == nullptr) {
        list.element = std::make_unique<Value>(); // the name is asked for as another kind, too
    }
    return *list.element;
}

} // namespace kel::Stencilor::Analysis
