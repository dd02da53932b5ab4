#include "RandomTemplate.h"

#include <utility>

namespace support {

namespace {

using namespace std::string_literals;

// Variables that are prefixes of each other, and one that ends in a dot.
const char* const variables[] = {"a", "a", "b", "a.b", "a.", "a.a", "a.b.a"};

const char* const prefixes[] = {"", "", "", "", "a.", "a.", "b.", "a.b.", "a..", "a.a.", "a.b.a."};

const char* stem(Meaning meaning) {
    return meaning == Meaning::text ? "s" : meaning == Meaning::condition ? "c" : "l";
}

/// The name of a value of this kind; rarely of another kind, or only a prefix.
std::string stemFor(Random& random, Meaning meaning) {
    switch (random.below(16)) {
    case 0:
        return stem(randomMeaning(random));
    case 1:
        return "";
    case 2:
        return random.oneOf(variables);
    default:
        return stem(meaning);
    }
}

class Writer {
  public:
    Writer(Random& random, std::size_t size, const std::vector<std::string>& paths)
        : random_(random), left_(size), paths_(paths) {}

    void writeNodes(int depth) {
        for (std::size_t count = random_.below(5); count > 0 && left_ > 0; --count) {
            --left_;
            writeNode(depth);
        }
    }

    std::string takeText() { return std::move(text_); }

  private:
    void writeNode(int depth) {
        switch (random_.below(depth < 4 ? 12 : 7)) {
        case 0:
        case 1:
            text_ += randomText(random_);
            break;
        case 2:
        case 3:
        case 4:
        case 5:
            writeTag("{{", {randomName(random_, Meaning::text)}, "}}");
            break;
        case 6:
            writeInclusion();
            break;
        case 7:
        case 8:
            writeConditional(depth);
            break;
        default:
            writeLoop(depth);
            break;
        }
    }

    void writeInclusion() {
        if (!paths_.empty()) {
            writeTag("{%", {"include", "\"", random_.oneOf(paths_), "\""}, "%}");
        }
    }

    void writeConditional(int depth) {
        writeTag("{%", {"if", randomName(random_, Meaning::condition)}, "%}");
        writeNodes(depth + 1);
        if (random_.oneIn(2)) {
            writeTag("{%", {"else"}, "%}");
            writeNodes(depth + 1);
        }
        writeTag("{%", {"endif"}, "%}");
    }

    void writeLoop(int depth) {
        // A space is needed after the variable, which would otherwise include the keyword.
        writeTag("{%",
                 {"for", random_.oneOf(variables) + " "s, "in", randomName(random_, Meaning::list)},
                 "%}");
        writeNodes(depth + 1);
        writeTag("{%", {"endfor"}, "%}");
    }

    void writeTag(const char* opener, const std::vector<std::string>& parts, const char* closer) {
        const bool spaced = !random_.oneIn(4);
        text_ += opener;
        for (const std::string& part : parts) {
            writeBlanks(spaced);
            text_ += part;
        }
        writeBlanks(spaced);
        text_ += closer;
    }

    void writeBlanks(bool spaced) {
        if (spaced) {
            text_ += random_.oneIn(16) ? " \t " : " ";
        }
    }

    Random& random_;
    std::size_t left_;
    const std::vector<std::string>& paths_;
    std::string text_;
};

void damage(Random& random, std::string& text) {
    static const std::string bytes = "{}% \t\n\"if.1\0\xC3"s;
    const std::size_t at = random.below(text.size());
    switch (random.below(4)) {
    case 0:
        text.erase(at, 1);
        break;
    case 1:
        text.insert(at, 1, random.oneOf(bytes));
        break;
    case 2:
        text[at] = random.oneOf(bytes);
        break;
    default:
        text.resize(at);
        break;
    }
}

} // namespace

Meaning randomMeaning(Random& random) {
    static constexpr Meaning meanings[] = {Meaning::text, Meaning::condition, Meaning::list};
    return random.oneOf(meanings);
}

std::string randomName(Random& random, Meaning meaning) {
    const std::string name = random.oneOf(prefixes) + stemFor(random, meaning);
    return name.empty() ? "a" : name;
}

std::string randomKey(Random& random, Meaning meaning) {
    // The rest of a name after a prefix may begin with a dot, or be empty.
    const char* const prefix = random.oneIn(2)    ? random.oneOf(prefixes)
                               : random.oneIn(16) ? "."
                                                  : "";
    return prefix + stemFor(random, meaning);
}

std::string randomText(Random& random) {
    static const std::string pieces[] = {"text",       " ",    "\n",           "\r\n",     "}}",
                                         "%}",         "{",    "\"",           "é",        "日",
                                         "\U0001F600", "\xC3", "\xA9",         "\xE2",     "\x82",
                                         "\xE2\x82",   "\xFF", "\xED\xA0\x80", "\xC0\x80", "\x7F"};
    std::string text;
    for (std::size_t count = random.below(4); count > 0; --count) {
        text += random.oneOf(pieces);
    }
    if (random.oneIn(40)) {
        text += '\0';
    }
    return text;
}

std::string randomTemplate(Random& random, std::size_t size,
                           const std::vector<std::string>& paths) {
    Writer writer(random, size, paths);
    for (std::size_t parts = 1 + random.below(3); parts > 0; --parts) {
        writer.writeNodes(0);
    }
    std::string text = writer.takeText();
    if (!text.empty() && random.oneIn(10)) {
        damage(random, text);
    }
    return text;
}

} // namespace support
