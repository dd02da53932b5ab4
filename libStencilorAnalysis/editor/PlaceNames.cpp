#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/editor/PlaceNames.h>

#include <algorithm>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

constexpr std::size_t mostBlocks = 200;

/// A block around the position.
struct Around {
    const TemplateFile* file;
    std::size_t tag;
    std::size_t site;
    std::size_t element = 0;
    std::size_t count = 0; ///< as most recently found
};

std::vector<Around> findAround(const std::vector<Site>& sites) {
    std::vector<Around> around;
    for (std::size_t i = 0; i < sites.size(); ++i) {
        for (const std::size_t tag : blocksAround(*sites[i].file, sites[i].offset)) {
            around.push_back({sites[i].file, tag, i});
        }
    }
    if (around.size() > mostBlocks) {
        around.erase(around.begin(), around.end() - mostBlocks);
    }
    return around;
}

void enterCondition(const Around& block, Moment& moment) {
    const SyntaxElement& tag = block.file->parts()[block.tag];
    auto found = moment.find(block.file->slice(tag.name));
    if (found && dynamic_cast<const ContextBoolean*>(found->value) != nullptr) {
        moment.scopes.push_back({.value = found->value,
                                 .file = block.file,
                                 .tag = block.tag,
                                 .path = std::move(found->path)});
    }
}

void enterLoop(Around& block, Moment& moment) {
    const SyntaxElement& tag = block.file->parts()[block.tag];
    auto found = moment.find(block.file->slice(tag.list));
    // Reading an element requires a non-const list.
    auto* const list =
        found ? const_cast<ContextIterable*>(dynamic_cast<const ContextIterable*>(found->value))
              : nullptr;
    block.count = list == nullptr ? 0 : list->size();
    if (block.element < block.count) {
        if (const ContextBase* const element = (*list)[static_cast<unsigned int>(block.element)]) {
            moment.scopes.push_back({.value = element,
                                     .file = block.file,
                                     .tag = block.tag,
                                     .element = block.element,
                                     .count = block.count,
                                     .path = std::move(found->path)});
        }
    }
    if (!tag.name.isEmpty()) {
        moment.variables.push_back(block.file->slice(tag.name));
    }
}

/// The variables of a file do not apply in the files that it includes.
void passSites(std::size_t& site, std::size_t next, Moment& moment) {
    if (site != next) {
        moment.variables.clear();
        site = next;
    }
}

Moment makeMoment(const ContextBase& context, std::vector<Around>& around, std::size_t lastSite) {
    Moment moment;
    moment.scopes.push_back({.value = &context});
    std::size_t site = 0;
    for (Around& block : around) {
        passSites(site, block.site, moment);
        if (block.file->parts()[block.tag].kind == Kind::For) {
            enterLoop(block, moment);
        } else {
            enterCondition(block, moment);
        }
    }
    passSites(site, lastSite, moment);
    return moment;
}

/// Advances to the next element of the innermost list that has one.
bool advance(std::vector<Around>& around) {
    for (auto block = around.rbegin(); block != around.rend(); ++block) {
        if (++block->element < block->count) {
            return true;
        }
        block->element = 0;
    }
    return false;
}

} // namespace

std::optional<FoundName> Moment::find(std::string_view name) const {
    for (std::size_t i = scopes.size(); i-- > 0;) {
        const PlaceScope& scope = scopes[i];
        const auto found = [&](std::string_view key,
                               std::string_view variable) -> std::optional<FoundName> {
            const ContextBase* const value = scope.value->find(String(key));
            if (value == nullptr) {
                return std::nullopt;
            }
            return FoundName{value, i, variable,
                             scope.path + (scope.path.empty() ? "" : ".") + std::string(key)};
        };
        for (auto variable = variables.rbegin(); variable != variables.rend(); ++variable) {
            if (hasPrefix(name, *variable)) {
                if (auto inside = found(name.substr(variable->size() + 1), *variable)) {
                    return inside;
                }
            }
        }
        if (auto whole = found(name, "")) {
            return whole;
        }
    }
    return std::nullopt;
}

std::vector<Moment> findMoments(const ContextBase& context, const std::vector<Site>& sites,
                                std::size_t most) {
    std::vector<Around> around = findAround(sites);
    std::vector<Moment> moments;
    do {
        moments.push_back(makeMoment(context, around, sites.size() - 1));
    } while (moments.size() < most && advance(around));
    return moments;
}

} // namespace kel::Stencilor::Analysis
