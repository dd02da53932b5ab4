#include "engines.h"

#include <ctemplate/template.h>

#include <stdexcept>

namespace bench {

namespace {

using ctemplate::DO_NOT_STRIP;

void fill(ctemplate::TemplateDictionary& dictionary, const object& data);

/// One member of an object. The engine has no `else`; if a workload needs one, its template has a
/// second section with the prefix `not_`.
struct member_filler {
    void operator()(const std::string& text) const { dictionary.SetValue(name, text); }
    void operator()(bool isTrue) const { dictionary.ShowSection(isTrue ? name : "not_" + name); }
    void operator()(const list& elements) const {
        for (const value& element : elements) {
            fill(*dictionary.AddSectionDictionary(name), std::get<object>(element.held));
        }
    }
    void operator()(const object&) const { throw std::logic_error("no workload nests objects"); }
    /// An included template only sees the dictionary that is created for it: the strings and
    /// booleans around the include.
    void operator()(const partial& included) const {
        ctemplate::TemplateDictionary& own = *dictionary.AddIncludeDictionary(name);
        own.SetFilename(included.path);
        for (const auto& [key, member] : around) {
            if (std::holds_alternative<std::string>(member.held) ||
                std::holds_alternative<bool>(member.held)) {
                std::visit(member_filler{own, key, around}, member.held);
            }
        }
    }

    ctemplate::TemplateDictionary& dictionary;
    const std::string& name;
    const object& around;
};

void fill(ctemplate::TemplateDictionary& dictionary, const object& data) {
    for (const auto& [name, member] : data) {
        std::visit(member_filler{dictionary, name, data}, member.held);
    }
}

/// Templates without includes: an object, with the smallest possible overhead.
class single {
  public:
    single(const std::string& text, parsing when)
        : text_(text), beforehand_(when == parsing::beforehand ? parse() : nullptr) {}

    void expand(ctemplate::TemplateDictionary& dictionary, std::string& output) const {
        const parsed inThisCall = beforehand_ ? nullptr : parse();
        (inThisCall ? inThisCall : beforehand_)->Expand(&output, &dictionary);
    }

  private:
    using parsed = std::unique_ptr<ctemplate::Template>;
    parsed parse() const {
        return parsed(ctemplate::Template::StringToTemplate(text_, DO_NOT_STRIP));
    }

    std::string text_;
    parsed beforehand_;
};

/// Templates with includes: a cache. It either reads and parses the files in every call, or has
/// everything in memory, or keeps files and checks in each call whether they changed.
class cached {
  public:
    cached(page from, bool inFiles, parsing when)
        : page_(std::move(from)), inFiles_(inFiles), everyCall_(when == parsing::everyCall) {
        if (inFiles_) {
            page_.included.emplace(name_, page_.text);
        }
        if (inFiles_ || everyCall_) {
            writeFiles(directory_, page_);
        }
        if (!everyCall_) {
            load(kept_);
        }
        if (!everyCall_ && !inFiles_) {
            for (const auto& [path, text] : page_.included) {
                kept_.StringToTemplateCache(path, text, DO_NOT_STRIP);
            }
        }
    }

    void expand(ctemplate::TemplateDictionary& dictionary, std::string& output) {
        if (everyCall_) {
            ctemplate::TemplateCache fresh;
            load(fresh);
            fresh.ExpandWithData(name_, DO_NOT_STRIP, &dictionary, nullptr, &output);
            return;
        }
        if (inFiles_) {
            kept_.ReloadAllIfChanged(ctemplate::TemplateCache::LAZY_RELOAD);
        }
        kept_.ExpandWithData(name_, DO_NOT_STRIP, &dictionary, nullptr, &output);
    }

  private:
    void load(ctemplate::TemplateCache& cache) const {
        cache.SetTemplateRootDirectory(directory_);
        if (!inFiles_) {
            cache.StringToTemplateCache(name_, page_.text, DO_NOT_STRIP);
        }
    }

    static constexpr const char* directory_ = "ctemplate";
    static constexpr const char* name_ = "page.html";
    page page_;
    bool inFiles_;
    bool everyCall_;
    ctemplate::TemplateCache kept_;
};

template <typename Expander>
renderer expanding(Expander expander, const object& data) {
    struct state {
        Expander expander;
        ctemplate::TemplateDictionary dictionary;
        std::string output;
    };
    auto shared = std::shared_ptr<state>(
        new state{std::move(expander), ctemplate::TemplateDictionary("bench"), {}});
    fill(shared->dictionary, data);
    return {[shared] {
                std::string output;
                shared->expander->expand(shared->dictionary, output);
                shared->output = std::move(output);
                return shared->output.size();
            },
            [shared] { return shared->output; }};
}

} // namespace

renderer ctemplateRenderer(const workload& work, parsing when) {
    const page own = translated(work.text, language::ctemplate, work.escaped);
    if (own.included.empty()) {
        return expanding(std::make_unique<single>(own.text, when), work.data);
    }
    return expanding(std::make_unique<cached>(own, work.inFiles, when), work.data);
}

} // namespace bench
