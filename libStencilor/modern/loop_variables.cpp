#include <libStencilor/modern/loop_variables.h>

#include <algorithm>
#include <cassert>

namespace kel::Stencilor::internal {

namespace {

std::uint64_t keyOf(std::uint32_t from, char byte) {
    return std::uint64_t{from} << 8 | static_cast<unsigned char>(byte);
}

} // namespace

void loop_variables::enter(std::string_view name) {
    node at = none;
    for (const char byte : name) {
        at = addStep(at, byte);
    }
    variable& entered = variables_[at];
    loops_.push_back({at, entered.entered, entered.newer});
    if (entered.entered != 0) {
        unlink(at);
    }
    entered.entered = static_cast<std::uint32_t>(loops_.size());
    entered.length = static_cast<std::uint32_t>(name.size());
    linkAsOlder(at, none);
}

void loop_variables::leave() {
    assert(!loops_.empty());
    const open_loop left = loops_.back();
    loops_.pop_back();
    unlink(left.entered);
    variables_[left.entered].entered = left.formerly;
    if (left.formerly != 0) {
        linkAsOlder(left.entered, left.newer);
    }
}

void loop_variables::collectPrefixes(std::string_view name, std::vector<std::uint32_t>& lengths) {
    lengths.clear();
    matches_.clear();
    node at = none;
    for (std::size_t length = 0; length < name.size(); ++length) {
        if (name[length] == '.' && variables_[at].entered != 0) {
            matches_.push_back(at);
        }
        at = step(at, name[length]);
        if (at == none) {
            break;
        }
    }
    const auto isNewer = [this](node left, node right) {
        return variables_[left].entered > variables_[right].entered;
    };
    std::sort(matches_.begin(), matches_.end(), isNewer);

    // The whole name is tried for the newest variable that is not its prefix.
    node newest = variables_[none].older;
    bool whole = false;
    for (const node matched : matches_) {
        if (!whole && matched != newest) {
            lengths.push_back(0);
            whole = true;
        }
        lengths.push_back(variables_[matched].length + 1);
        newest = variables_[newest].older;
    }
    if (!whole) {
        lengths.push_back(0);
    }
}

loop_variables::node loop_variables::step(node from, char byte) const {
    const auto found = steps_.find(keyOf(from, byte));
    return found == steps_.end() ? none : found->second;
}

loop_variables::node loop_variables::addStep(node from, char byte) {
    const auto [place, added] =
        steps_.try_emplace(keyOf(from, byte), static_cast<node>(variables_.size()));
    if (added) {
        variables_.emplace_back();
    }
    return place->second;
}

void loop_variables::unlink(node linked) {
    const variable& left = variables_[linked];
    variables_[left.newer].older = left.older;
    variables_[left.older].newer = left.newer;
}

/// Links a variable after `newer`; `none` makes it the newest.
void loop_variables::linkAsOlder(node linked, node newer) {
    const node older = variables_[newer].older;
    variables_[linked].newer = newer;
    variables_[linked].older = older;
    variables_[newer].older = linked;
    variables_[older].newer = linked;
}

} // namespace kel::Stencilor::internal
