#include <libStencilorJson/json_grammar.h>
#include <tools/stencilor/commands/ContextPlaces.h>

#include <map>
#include <utility>

namespace stencilor {

using kel::Stencilor::SyntaxRange;
using namespace kel::Stencilor::internal;

namespace {

/// Follows JSON text through the tree of the names, whose edges are the parts between dots.
class NameFinder final : public JsonReceiver {
  public:
    explicit NameFinder(const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            ends_.push_back(follow(root, name, [this](Edge edge) {
                return edges_.try_emplace(edge, edges_.size() + 1).first->second;
            }));
        }
        ranges_.resize(edges_.size() + 1);
    }

    std::vector<std::optional<SyntaxRange>> ranges() const {
        std::vector<std::optional<SyntaxRange>> found;
        for (const std::size_t end : ends_) {
            found.push_back(ranges_[end]);
        }
        return found;
    }

    void null(JsonRange range) override { markElement(range); }
    void boolean(bool, JsonRange range) override { markElement(range); }
    void number(std::string_view, JsonRange range) override { markElement(range); }
    void string(std::string_view, JsonRange range) override { markElement(range); }
    void beginArray(std::size_t offset) override {
        markElement({offset, offset + 1});
        open_.push_back({isInArray() ? nodeOfElement() : next_, true});
    }
    void endArray(JsonRange) override { open_.pop_back(); }
    void beginObject(std::size_t) override {
        open_.push_back({isInArray() ? open_.back().node : next_, false});
    }
    void endObject(JsonRange) override { open_.pop_back(); }

    void name(std::string_view name, JsonRange range) override {
        next_ = walk(open_.back().node, name);
        mark(next_, range);
    }

  private:
    using Edge = std::pair<std::size_t, std::string_view>;

    struct Open {
        std::size_t node;
        bool isArray;
    };

    static constexpr std::size_t root = 0;
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

    template <typename Step>
    static std::size_t follow(std::size_t node, std::string_view name, Step step) {
        for (std::size_t begin = 0; node != nowhere;) {
            const std::size_t dot = name.find('.', begin);
            node = step(Edge(node, name.substr(begin, dot - begin)));
            if (dot == name.npos) {
                break;
            }
            begin = dot + 1;
        }
        return node;
    }

    std::size_t walk(std::size_t node, std::string_view name) const {
        return follow(node, name, [this](Edge edge) {
            const auto found = edges_.find(edge);
            return found == edges_.end() ? nowhere : found->second;
        });
    }

    void mark(std::size_t node, JsonRange range) {
        if (node != nowhere && !ranges_[node]) {
            ranges_[node] = SyntaxRange{static_cast<unsigned int>(range.begin),
                                        static_cast<unsigned int>(range.end)};
        }
    }

    /// An element that is not an object is named `value`.
    void markElement(JsonRange range) {
        if (isInArray()) {
            mark(nodeOfElement(), range);
        }
    }

    bool isInArray() const { return !open_.empty() && open_.back().isArray; }
    std::size_t nodeOfElement() const { return walk(open_.back().node, "value"); }

    std::map<Edge, std::size_t> edges_;
    std::vector<std::size_t> ends_; // of the names
    std::vector<std::optional<SyntaxRange>> ranges_;
    std::vector<Open> open_;
    std::size_t next_ = root; // the node of the next value
};

} // namespace

std::vector<std::optional<SyntaxRange>> findNames(std::string_view text,
                                                  const std::vector<std::string>& names) {
    NameFinder finder(names);
    JsonGrammar(text, finder).read();
    return finder.ranges();
}

} // namespace stencilor
