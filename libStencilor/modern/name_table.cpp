#include <libStencilor/modern/loop_variables.h>
#include <libStencilor/modern/name_table.h>
#include <libStencilor/modern/text_position.h>

#include <algorithm>
#include <functional>
#include <map>

namespace kel::Stencilor::internal {

/// Fills a table from the parts of a template, in order.
class name_table::builder final : public SyntaxVisitor {
  public:
    builder(name_table& table, std::string_view text)
        : table_(table), text_(text), position_(text), unusedBytes_(text.size()) {}

    void visit(const SyntaxElement& part) override {
        using Kind = SyntaxElement::Kind;
        switch (part.kind) {
        case Kind::Substitution:
        case Kind::If:
            addName(part.name);
            break;
        case Kind::For:
            addName(part.list);
            variables_.enter(textOf(part.name));
            break;
        case Kind::EndFor:
            variables_.leave();
            break;
        case Kind::EndIf:
        case Kind::Else:
        case Kind::Text:
            break;
        case Kind::Include:
            prefixLengths_.assign(1, 0); // a path is tried unchanged
            addUse(part.name);
            break;
        }
    }

  private:
    std::string_view textOf(SyntaxRange range) const {
        return text_.substr(range.begin, range.end - range.begin);
    }

    void addName(SyntaxRange name) {
        variables_.collectPrefixes(textOf(name), prefixLengths_);
        addUse(name);
    }

    void addUse(SyntaxRange name) {
        position_.moveTo(name.begin);
        const std::uint32_t index = keysOf(textOf(name));
        const name_keys& keys = table_.lists_[index];
        table_.uses_.push_back({name.begin, name.end - name.begin, position_.line(),
                                position_.column(), index,
                                keys.kept > 0 ? keys.firstKey : name_use::notKept});
    }

    /// The keys of a name with the prefixes in `prefixLengths_`.
    std::uint32_t keysOf(std::string_view name) {
        constexpr int most = 8; // known lists with the same hash; further ones are not shared
        const std::size_t hash = std::hash<std::string_view>()(name);
        auto [found, end] = lists_.equal_range(hash);
        int compared = 0;
        for (; found != end; ++found, ++compared) {
            if (isTriedAlike(found->second, name)) {
                return found->second.index;
            }
        }
        const auto index = static_cast<std::uint32_t>(table_.lists_.size());
        table_.lists_.push_back(makeList(name));
        if (compared < most) {
            lists_.emplace(hash, known_list{index, name});
        }
        return index;
    }

    struct known_list {
        std::uint32_t index;
        std::string_view name;
    };

    bool isTriedAlike(const known_list& known, std::string_view name) const {
        const name_keys& list = table_.lists_[known.index];
        const auto first = table_.prefixes_.begin() + static_cast<std::ptrdiff_t>(list.firstPrefix);
        return known.name == name && std::equal(prefixLengths_.begin(), prefixLengths_.end(), first,
                                                first + static_cast<std::ptrdiff_t>(list.count));
    }

    name_keys makeList(std::string_view name) {
        name_keys list{static_cast<std::uint32_t>(table_.keys_.size()), 0,
                       static_cast<std::uint32_t>(table_.prefixes_.size()),
                       static_cast<std::uint32_t>(prefixLengths_.size())};
        table_.prefixes_.insert(table_.prefixes_.end(), prefixLengths_.begin(),
                                prefixLengths_.end());
        for (const std::uint32_t length : prefixLengths_) {
            const std::string_view key = name.substr(length);
            if (key.size() > unusedBytes_) {
                break;
            }
            unusedBytes_ -= key.size();
            table_.keys_.emplace_back(key);
            ++list.kept;
        }
        const auto lastKept = prefixLengths_.begin() + static_cast<std::ptrdiff_t>(list.kept);
        if (std::find(prefixLengths_.begin(), lastKept, 0u) == lastKept) {
            table_.keys_.emplace_back(name);
        }
        return list;
    }

    name_table& table_;
    std::string_view text_;
    text_position position_;
    std::size_t unusedBytes_; // available for further keys
    loop_variables variables_;
    std::vector<std::uint32_t> prefixLengths_;
    // By the hash of the name. Not a hash table, because templates could choose names that collide.
    std::multimap<std::size_t, known_list> lists_;
};

const String& name_table::nameOf(const name_use& use) const noexcept {
    const name_keys& list = lists_[use.keys];
    const auto first = prefixes(list).begin();
    // This is the end if the name itself is stored separately.
    const auto whole = std::find(first, first + list.kept, 0u);
    return keys_[list.firstKey + static_cast<std::size_t>(whole - first)];
}

name_table::name_table(const String& text) {
    builder parts(*this, text.view());
    readSyntax(text, parts);
    uses_.shrink_to_fit();
    lists_.shrink_to_fit();
    keys_.shrink_to_fit();
    prefixes_.shrink_to_fit();
}

} // namespace kel::Stencilor::internal
