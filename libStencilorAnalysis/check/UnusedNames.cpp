#include <libStencilor/context/context_access.h>
#include <libStencilorAnalysis/check/UnusedNames.h>

#include <set>
#include <string_view>

namespace kel::Stencilor::Analysis {

namespace {

using internal::context_access;

/// The number of parts at each end of a name that may be names themselves.
constexpr int mostParts = 32;

/// No context is nested this deeply.
struct Level {
    const ContextBase* value;
    std::string prefix;
};

} // namespace

void UnusedNames::visitName(const NameUse& use) {
    std::string_view rest = use.text();
    // Loop variables may precede the name, and members follow it.
    for (int front = 0; front < mostParts; ++front) {
        std::size_t dot = rest.find('.');
        for (int back = 0; back < mostParts && dot != rest.npos; ++back) {
            used_.emplace(rest.substr(0, dot));
            dot = rest.find('.', dot + 1);
        }
        used_.emplace(rest);
        const std::size_t first = rest.find('.');
        if (first == rest.npos) {
            break;
        }
        rest.remove_prefix(first + 1);
    }
}

/// Inside the block of a boolean, its members are named without a prefix.
bool UnusedNames::isUsedInBoolean(const ContextBase& scope, const std::string& name) const {
    std::size_t dot = name.find('.');
    for (int count = 0; dot != name.npos && count < mostParts; ++count) {
        if (dynamic_cast<const ContextBoolean*>(scope.find(name.substr(0, dot))) != nullptr &&
            used_.contains(name.substr(dot + 1))) {
            return true;
        }
        dot = name.find('.', dot + 1);
    }
    return false;
}

std::vector<std::string> UnusedNames::find(const ContextBase& context) const {
    std::set<std::string> unused;
    std::vector<Level> levels = {{&context, ""}};
    while (!levels.empty()) {
        const Level level = std::move(levels.back());
        levels.pop_back();
        for (const auto& [key, value] : context_access::children(*level.value)) {
            const std::string name = key.str();
            const std::size_t dot = name.rfind('.');
            if (!used_.contains(name) && !isUsedInBoolean(*level.value, name)) {
                // If its parent is unused, too, the parent is reported instead.
                if (dot == name.npos || used_.contains(name.substr(0, dot))) {
                    unused.insert(level.prefix + name);
                }
                continue;
            }
            if (const auto* const list = dynamic_cast<const ContextIterable*>(value)) {
                for (const ContextBase* element : context_access::elements(*list)) {
                    if (element != nullptr) {
                        levels.push_back({element, level.prefix + name + "."});
                    }
                }
            }
        }
    }
    return {unused.begin(), unused.end()};
}

} // namespace kel::Stencilor::Analysis
