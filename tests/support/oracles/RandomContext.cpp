#include "RandomContext.h"

#include "RandomTemplate.h"

#include <cstddef>

namespace support {

namespace {

using namespace kel::Stencilor;

/// A host's own kind of value.
template <typename Kind>
class Derived : public Kind {
  public:
    using Kind::Kind;
};

constexpr int greatestDepth = 4;

class Builder {
  public:
    Builder(Random& random, const ToString& toString) : random_(random), toString_(toString) {}

    ContextBase* makeRoot() {
        ContextBase* root = random_.oneIn(8) ? makeOfAnyKind(0) : make<ContextDictionary>();
        addChildren(*root, 12 + random_.below(24), 0);
        return root;
    }

  private:
    template <typename Kind, typename... Arguments>
    Kind* make(Arguments... arguments) {
        return random_.oneIn(6) ? new Derived<Kind>(arguments...) : new Kind(arguments...);
    }

    ContextBase* makeOfAnyKind(int depth) {
        switch (random_.below(5)) {
        case 0:
            return make<ContextDictionary>();
        case 1:
            return make<ContextBase>();
        default:
            return makeValue(randomMeaning(random_), depth);
        }
    }

    ContextBase* makeValue(Meaning meaning, int depth) {
        switch (meaning) {
        case Meaning::text:
            return makeText();
        case Meaning::condition:
            return make<ContextBoolean>(random_.oneIn(2));
        case Meaning::list:
            break;
        }
        return makeList(depth);
    }

    ContextBase* makeText() {
        std::string text = "#" + std::to_string(++texts_);
        if (random_.oneIn(3)) {
            text.insert(random_.oneIn(2) ? 0 : text.size(), randomText(random_));
        }
        return make<ContextString>(toString_(random_, text));
    }

    ContextBase* makeList(int depth) {
        auto* list = make<ContextIterable>();
        const std::size_t size = depth < greatestDepth ? random_.below(4) : 0;
        for (std::size_t element = 0; element < size; ++element) {
            list->add(random_.oneIn(8) ? nullptr : makeElement(depth + 1));
        }
        return list;
    }

    ContextBase* makeElement(int depth) {
        ContextBase* element = random_.oneIn(4) ? makeOfAnyKind(depth) : make<ContextDictionary>();
        addChildren(*element, random_.below(10), depth);
        return element;
    }

    /// A child of the kind that its key suggests, or of another kind, or null.
    ContextBase* makeChild(Meaning meaning, int depth) {
        if (random_.oneIn(10)) {
            return nullptr;
        }
        ContextBase* child = random_.oneIn(12) ? makeOfAnyKind(depth) : makeValue(meaning, depth);
        if (random_.oneIn(meaning == Meaning::condition ? 2 : 8)) {
            addChildren(*child, random_.below(6), depth);
        }
        return child;
    }

    /// At most `count` children: an existing key is left alone.
    void addChildren(ContextBase& parent, std::size_t count, int depth) {
        if (depth >= greatestDepth) {
            return;
        }
        for (; count > 0; --count) {
            const Meaning meaning = randomMeaning(random_);
            const kel::String key(randomKey(random_, meaning).c_str());
            if (!parent.containsKey(key)) {
                parent.insert(key, makeChild(meaning, depth + 1));
            }
        }
    }

    Random& random_;
    const ToString& toString_;
    unsigned int texts_ = 0;
};

} // namespace

std::unique_ptr<ContextBase> randomContext(Random& random, const ToString& toString) {
    return std::unique_ptr<ContextBase>(Builder(random, toString).makeRoot());
}

} // namespace support
