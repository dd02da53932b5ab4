#include "language.h"

#include <sstream>
#include <vector>

namespace bench {

namespace {

std::string peerTag(const char* kind, const std::string& name) {
    return "{{" + (kind + name) + "}}";
}

/// Peers search for the member's name without a prefix, in one scope after another.
std::string member(const std::string& name) {
    return name.substr(name.rfind('.') + 1);
}

class translator {
  public:
    translator(language to, bool escaped) : to_(to), escaped_(escaped) {}

    std::string translate(const std::string& text) {
        std::string made;
        std::size_t done = 0;
        for (std::size_t tag; (tag = text.find('[', done)) != std::string::npos;) {
            const std::size_t end = text.find(']', tag);
            made.append(text, done, tag - done);
            made += translateTag(text.substr(tag + 1, end - tag - 1));
            done = end + 1;
        }
        return made + text.substr(done);
    }

  private:
    std::string translateTag(const std::string& tag) {
        std::istringstream words(tag);
        std::string kind;
        std::string name;
        std::string in;
        std::string list;
        words >> kind >> name >> in >> list;
        const bool ours = to_ == language::stencilor;
        if (kind == "for") {
            return ours ? open("{% " + tag + " %}", "{% endfor %}") : openSection("#", list);
        }
        if (kind == "if") {
            return ours ? open("{% " + tag + " %}", "{% endif %}") : openSection("#", name);
        }
        if (kind == "else") {
            return ours ? "{% else %}" : otherwise();
        }
        if (kind == "end") {
            return close();
        }
        if (kind == "include") {
            return ours ? "{% include \"" + name + ".html\" %}" : peerTag(">", name);
        }
        return value(kind);
    }

    std::string value(const std::string& name) const {
        switch (to_) {
        case language::stencilor:
            return "{{ " + name + " }}";
        case language::ctemplate:
            return "{{" + member(name) + (escaped_ ? ":h}}" : "}}");
        case language::mustache:
            break;
        }
        return escaped_ ? "{{" + member(name) + "}}" : "{{{" + member(name) + "}}}";
    }

    std::string open(const std::string& tag, const std::string& end) {
        ends_.push_back(end);
        return tag;
    }

    std::string openSection(const char* kind, const std::string& name) {
        section_ = member(name);
        return open(peerTag(kind, section_), peerTag("/", section_));
    }

    /// The most recently opened section is closed: no workload has a block before `else`.
    std::string otherwise() {
        const std::string end = close();
        return end + (to_ == language::mustache ? openSection("^", section_)
                                                : openSection("#", "not_" + section_));
    }

    std::string close() {
        const std::string end = ends_.back();
        ends_.pop_back();
        return end;
    }

    language to_;
    bool escaped_;
    std::string section_;
    std::vector<std::string> ends_;
};

} // namespace

std::string translated(const std::string& text, language to, bool escaped) {
    return translator(to, escaped).translate(text);
}

page translated(const page& from, language to, bool escaped) {
    page made{translated(from.text, to, escaped)};
    for (const auto& [path, text] : from.included) {
        made.included.emplace(path, translated(text, to, escaped));
    }
    return made;
}

} // namespace bench
