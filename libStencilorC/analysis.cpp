#include <libStencilorAnalysis/check/TemplateCheck.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/template/TemplateTree.h>
#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <cstdint>
#include <utility>

using namespace kel::Stencilor;
using namespace kel::Stencilor::Analysis;
using namespace kel::Stencilor::internal;

namespace {

/// The templates of a source, by path.
class SourceReader final : public TemplateReader {
  public:
    /// A null source has no templates.
    explicit SourceReader(const stencilor_source* source)
        : source_(source == nullptr ? none_ : *source->source) {}

    Answer find(const std::string& path, TemplateText& found) override {
        found.name = path;
        std::optional<Template> made;
        switch (source_.find(path, UINT64_MAX, made)) {
        case TemplateSource::Answer::Found:
            found = {path, path, made->text().str()};
            return Answer::Found;
        case TemplateSource::Answer::Missing:
            return Answer::Missing;
        default:
            return Answer::Unreadable;
        }
    }

  private:
    no_templates none_;
    TemplateSource& source_;
};

/// A template and what it includes. An include of its own path finds the template that was passed.
class AnalysedTemplate {
  public:
    AnalysedTemplate(const stencilor_template& root, const stencilor_source* source)
        : reader_(source), file_(files_.add({root.parsed.name().str(), root.parsed.name().str(),
                                             root.parsed.text().str()})) {}

    TemplateFiles& files() { return files_; }
    const TemplateFile& file() const { return file_; }

  private:
    SourceReader reader_;
    TemplateFiles files_{reader_};
    const TemplateFile& file_;
};

} // namespace

int stencilor_check(const stencilor_template* parsed, stencilor_source* source,
                    const stencilor_context* context, stencilor_text** json) {
    return guarded([&] {
        stencilor_text*& made = placeOf(json);
        AnalysedTemplate root(given(parsed), source);
        CheckReport report;
        const ContextBase* const values =
            context == nullptr ? nullptr : &static_cast<const ContextBase&>(context->context);
        checkTemplate(root.files(), root.file(), values, report);
        made = new stencilor_text{formatJson(sortFindings(std::move(report)))};
    });
}

int stencilor_names(const stencilor_template* parsed, stencilor_source* source,
                    stencilor_text** json) {
    return guarded([&] {
        stencilor_text*& made = placeOf(json);
        AnalysedTemplate root(given(parsed), source);
        if (root.file().fault().isPresent()) {
            return STENCILOR_REJECTED;
        }
        NameList names;
        survey(root.files(), root.file(), names);
        made = new stencilor_text{names.formatJson()};
        return STENCILOR_OK;
    });
}

int stencilor_tree(const stencilor_template* parsed, stencilor_text** json) {
    return guarded([&] {
        stencilor_text*& made = placeOf(json);
        AnalysedTemplate root(given(parsed), nullptr);
        if (root.file().fault().isPresent()) {
            return STENCILOR_REJECTED;
        }
        made = new stencilor_text{formatTreeJson({&root.file()})};
        return STENCILOR_OK;
    });
}
