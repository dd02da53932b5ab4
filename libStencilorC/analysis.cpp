#include <libStencilorAnalysis/check/TemplateCheck.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/template/TemplateTree.h>
#include <libStencilorC/result.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

using namespace kel::Stencilor;
using namespace kel::Stencilor::Analysis;
using namespace kel::Stencilor::internal;

namespace {

constexpr std::uint64_t unlimited = UINT64_MAX;

/// The templates of a source, by path.
class SourceReader final : public TemplateReader {
  public:
    /// A null source has no templates. `most` limits the bytes of all templates together; 0 means
    /// no limit.
    SourceReader(TemplateSource* source, std::uint64_t most)
        : source_(source == nullptr ? none_ : *source), left_(most == 0 ? unlimited : most) {}

    Answer find(const std::string& path, TemplateText& found) override {
        found.name = path;
        std::optional<Template> made;
        switch (source_.find(path, left_, made)) {
        case TemplateSource::Answer::Found:
            found = {path, path, made->text().str()};
            left_ -= left_ == unlimited ? 0 : found.text.size();
            return Answer::Found;
        case TemplateSource::Answer::Missing:
            return Answer::Missing;
        case TemplateSource::Answer::TooLarge:
            throw call_failure{STENCILOR_TEMPLATE_LIMIT};
        default:
            return Answer::Unreadable;
        }
    }

  private:
    no_templates none_;
    TemplateSource& source_;
    std::uint64_t left_;
};

/// A template and what it includes. An include of its own path finds the template that was passed.
class AnalysedTemplate {
  public:
    AnalysedTemplate(const stencilor_template& root, TemplateSource* source,
                     std::uint64_t mostBytes = 0)
        : reader_(source, mostBytes),
          file_(files_.add(
              {root.parsed.name().str(), root.parsed.name().str(), root.parsed.text().str()})) {}

    TemplateFiles& files() { return files_; }
    const TemplateFile& file() const { return file_; }

  private:
    SourceReader reader_;
    TemplateFiles files_{reader_};
    const TemplateFile& file_;
};

TemplateSource* pointerTo(const stencilor_source* source) {
    return source == nullptr ? nullptr : source->source.get();
}

WalkLimits walkLimits(const RenderOptions& options) {
    WalkLimits limits;
    if (options.limits.steps != 0) {
        limits.steps = options.limits.steps;
    }
    if (options.keepGoing) {
        limits.goOn = [&options] {
            stopUnlessZero(options.keepGoing() ? 0 : 1);
            return true;
        };
    }
    return limits;
}

/// Without a source in the options there are no included templates.
stencilor_text* check(const stencilor_template& parsed, const stencilor_context* context,
                      const RenderOptions& options) {
    AnalysedTemplate root(parsed, options.source, options.limits.templateBytes);
    CheckReport report;
    const ContextBase* const values =
        context == nullptr ? nullptr : &static_cast<const ContextBase&>(context->context);
    checkTemplate(root.files(), root.file(), values, report, walkLimits(options));
    std::vector<Finding> findings = sortFindings(std::move(report));
    const std::size_t most = options.limits.messages;
    if (most != 0 && findings.size() > most) {
        findings.erase(findings.begin() + static_cast<std::ptrdiff_t>(most), findings.end());
    }
    return new stencilor_text{formatJson(findings)};
}

} // namespace

int stencilor_check(const stencilor_template* parsed, stencilor_source* source,
                    const stencilor_context* context, stencilor_text** json) {
    return guarded([&] {
        stencilor_text*& made = placeOf(json);
        made =
            check(given(parsed), context, {.source = pointerTo(source), .limits = {.messages = 0}});
    });
}

int stencilor_check_limited(const stencilor_template* parsed, const stencilor_context* context,
                            const stencilor_options* options, stencilor_text** json) {
    return guarded([&] {
        stencilor_text*& made = placeOf(json);
        int stopCode = 0;
        const call_options how(options, stopCode);
        made = check(given(parsed), context, how.get());
    });
}

int stencilor_names(const stencilor_template* parsed, stencilor_source* source,
                    stencilor_text** json) {
    return guarded([&] {
        stencilor_text*& made = placeOf(json);
        AnalysedTemplate root(given(parsed), pointerTo(source));
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
