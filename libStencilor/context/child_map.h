#ifndef LIBSTENCILOR_CONTEXT_CHILD_MAP_H
#define LIBSTENCILOR_CONTEXT_CHILD_MAP_H

#include <libKel/String.h>
#include <libStencilor/host/byte_text.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <type_traits>
#include <utility>

namespace kel::Stencilor {

class ContextBase;

namespace internal {

/// The starting position of a search in a `child_table`.
using child_guess = std::uint8_t;

/// An ordered map of children, optimized for lookups: similar values have similar keys in the same
/// order, so a key is nearly always at the same position in the next value.
///
/// How it works: entries do not move. The first ones are in the table and the others in blocks, and
/// all are linked in the order of their keys. A few entries are searched linearly, more through a
/// tree. Entries are never removed.
/// Ownership: owns keys, not values.
template <typename Key>
class child_table {
    struct node;

  public:
    using value_type = std::pair<const Key, ContextBase*>;

    /// Iterates over the entries in the order of their keys.
    template <typename Value>
    class basic_iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = child_table::value_type;
        using difference_type = std::ptrdiff_t;
        using pointer = Value*;
        using reference = Value&;

        basic_iterator() = default;
        explicit basic_iterator(node* at) : at_(at) {}
        reference operator*() const { return at_->entry; }
        pointer operator->() const { return &at_->entry; }
        basic_iterator& operator++() {
            at_ = at_->next;
            return *this;
        }
        basic_iterator operator++(int) { return std::exchange(*this, basic_iterator(at_->next)); }
        bool operator==(const basic_iterator& other) const = default;

      private:
        node* at_ = nullptr;
    };
    using iterator = basic_iterator<value_type>;
    using const_iterator = basic_iterator<const value_type>;

    child_table() = default;
    child_table(const child_table& other) : child_table() {
        for (const auto& [key, value] : other) {
            (*this)[key] = value;
        }
    }
    child_table& operator=(const child_table&) = delete;
    ~child_table() {
        if (size_ > 0) {
            std::destroy_at(firstNode());
        }
        std::size_t left = size_ - 1;
        for (block* next = blocks_; next != nullptr;) {
            block* const freed = std::exchange(next, next->next);
            const std::size_t count = std::min<std::size_t>(left, freed->capacity);
            std::destroy_n(freed->nodes(), count);
            left -= count;
            ::operator delete(freed);
        }
    }

    bool empty() const noexcept { return size_ == 0; }
    std::size_t size() const noexcept { return size_; }
    iterator begin() noexcept { return iterator(lowest_); }
    iterator end() noexcept { return iterator(); }
    const_iterator begin() const noexcept { return const_iterator(lowest_); }
    const_iterator end() const noexcept { return const_iterator(); }

    /// The value under `key`; a null one is added if there is none. It never moves.
    ContextBase*& operator[](const Key& key) {
        node* const found = search(key);
        return (found == nullptr ? add(key) : found)->entry.second;
    }

    /// Finds the entry of `key`, or the end.
    const_iterator find(const Key& key) const { return const_iterator(search(key)); }

    /// The same, and sets `guess` to the position of the entry.
    const_iterator find(const Key& key, child_guess& guess) const {
        node* const found = search(key);
        if (found != nullptr) {
            guess = static_cast<child_guess>(positionOf(found)); // right for the first 256
        }
        return const_iterator(found);
    }

    /// The value under `key` if it is at the position `guess`; otherwise null.
    ContextBase* guess(const Key& key, child_guess guess) const {
        const node* const guessed = guess < size_ ? nodeAt(guess) : nullptr;
        return guessed != nullptr && guessed->entry.first == key ? guessed->entry.second : nullptr;
    }

  private:
    struct node {
        value_type entry;
        node* next; // in the order of the keys
    };

    /// Precedes the nodes that follow it in memory.
    struct alignas(node) block {
        block* next;
        std::uint32_t capacity;

        node* nodes() noexcept { return reinterpret_cast<node*>(this + 1); }
        bool holds(const node* one) noexcept {
            return std::less_equal<>()(nodes(), one) && std::less<>()(one, nodes() + capacity);
        }
    };

    struct by_key {
        using is_transparent = void;
        bool operator()(const node* left, const node* right) const {
            return left->entry.first < right->entry.first;
        }
        bool operator()(const node* left, const Key& right) const {
            return left->entry.first < right;
        }
        bool operator()(const Key& left, const node* right) const {
            return left < right->entry.first;
        }
    };
    using node_tree = std::set<node*, by_key>;

    static constexpr std::uint32_t few = 8; // are searched without a tree

    node* firstNode() const noexcept {
        return std::launder(reinterpret_cast<node*>(const_cast<std::byte*>(firstNode_)));
    }

    /// The node at `position` in the order of addition, which must exist.
    node* nodeAt(std::size_t position) const noexcept {
        assert(position < size_);
        if (position == 0) {
            return firstNode();
        }
        block* at = blocks_;
        for (--position; position >= at->capacity; at = at->next) {
            position -= at->capacity;
        }
        return at->nodes() + position;
    }

    /// The position of `found` in the order of addition.
    std::size_t positionOf(const node* found) const noexcept {
        if (found == firstNode()) {
            return 0;
        }
        std::size_t before = 1;
        block* at = blocks_;
        for (; !at->holds(found); at = at->next) {
            before += at->capacity;
        }
        return before + static_cast<std::size_t>(found - at->nodes());
    }

    node* search(const Key& key) const {
        if (tree_ != nullptr) {
            const auto found = tree_->find(key);
            return found == tree_->end() ? nullptr : *found;
        }
        node* at = lowest_;
        while (at != nullptr && !(at->entry.first == key)) {
            at = at->next;
        }
        return at;
    }

    /// The link to the successor of `key`, which has no entry.
    node** linkBefore(const Key& key) {
        node** link = &lowest_;
        if (tree_ != nullptr) {
            const auto after = tree_->lower_bound(key);
            return after == tree_->begin() ? link : &(*std::prev(after))->next;
        }
        while (*link != nullptr && (*link)->entry.first < key) {
            link = &(*link)->next;
        }
        return link;
    }

    /// Adds an entry with a null value. Steps that can fail come first.
    node* add(const Key& key) {
        node** const link = linkBefore(key);
        node* const added = new (room()) node{{key, nullptr}, *link};
        try {
            index(added);
        } catch (...) {
            std::destroy_at(added);
            throw;
        }
        *link = added;
        ++size_;
        return added;
    }

    /// The location of the next node.
    void* room() {
        if (size_ == 0) {
            return firstNode_;
        }
        std::size_t position = size_ - 1;
        block** last = &blocks_;
        for (; *last != nullptr && position >= (*last)->capacity; last = &(*last)->next) {
            position -= (*last)->capacity;
        }
        if (*last == nullptr) {
            const std::uint32_t capacity = std::max<std::uint32_t>(3, size_);
            *last = new (::operator new(sizeof(block) + capacity * sizeof(node)))
                block{nullptr, capacity};
        }
        return (*last)->nodes() + position;
    }

    void index(node* added) {
        if (tree_ != nullptr) {
            tree_->insert(added);
        } else if (size_ == few) {
            auto tree = std::make_unique<node_tree>();
            tree->insert(added);
            for (node* at = lowest_; at != nullptr; at = at->next) {
                tree->insert(at);
            }
            tree_ = std::move(tree);
        }
    }

    node* lowest_ = nullptr;
    std::uint32_t size_ = 0;
    block* blocks_ = nullptr;
    std::unique_ptr<node_tree> tree_;
    alignas(node) std::byte firstNode_[sizeof(node)];
};

/// The map for strings of another base library, which only have an order.
template <typename Key>
class plain_child_map : public std::map<Key, ContextBase*> {
  public:
    using std::map<Key, ContextBase*>::find;
    auto find(const Key& key, child_guess&) const { return find(key); }
    ContextBase* guess(const Key&, child_guess) const { return nullptr; }
};

using child_map_base =
    std::conditional_t<byte_text<String>, child_table<String>, plain_child_map<String>>;

/// The children of a value.
class child_map : public child_map_base {};

} // namespace internal
} // namespace kel::Stencilor

#endif
