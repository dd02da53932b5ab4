#ifndef TOOLS_STENCILOR_COMMANDS_RENDEREDTEMPLATES_H
#define TOOLS_STENCILOR_COMMANDS_RENDEREDTEMPLATES_H

#include <libStencilor/Template.h>
#include <libStencilorAnalysis/template/TemplateFiles.h>
#include <tools/stencilor/commands/TemplateFolder.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace stencilor {

/// The templates of one render, kept unchanged for its messages.
///
/// Ownership: borrows the files.
class RenderedTemplates final : public kel::Stencilor::TemplateSource {
  public:
    /// Reads the template to render.
    /// Errors: throws `Failure`.
    RenderedTemplates(const Request& request, Files& files);

    const kel::Stencilor::Template& root() const { return *root_.found; }

    kel::Stencilor::TemplateSource::Answer
    find(const kel::String& path, std::uint64_t maxBytes,
         std::optional<kel::Stencilor::Template>& found) override;

    /// The template with a name, for messages. It is parsed again on first use.
    kel::Stencilor::Analysis::TemplateFiles& files() { return files_; }
    const kel::Stencilor::Analysis::TemplateFile& rootFile();
    const kel::Stencilor::Analysis::TemplateFile& fileNamed(const kel::String& name);

    /// The rendered templates with damaged text.
    std::vector<const kel::Stencilor::Analysis::TemplateFile*> damagedFiles();

  private:
    /// The result for a path.
    struct Known {
        kel::Folder::Answer answer = kel::Folder::Answer::Missing;
        std::string name{};
        std::string identity{};
        std::optional<kel::Stencilor::Template> found{};

        kel::Stencilor::Analysis::TemplateText text() const;
    };

    static Known open(const kel::Stencilor::Analysis::TemplateText& text);

    /// Returns the templates that the render used.
    class Reader final : public kel::Stencilor::Analysis::TemplateReader {
      public:
        explicit Reader(RenderedTemplates& templates) : templates_(templates) {}
        Answer find(const std::string& path,
                    kel::Stencilor::Analysis::TemplateText& found) override;

      private:
        RenderedTemplates& templates_;
    };

    Known root_;
    TemplateFolder folder_;
    std::map<std::string, Known> known_; // by path
    std::map<std::string, const kel::Stencilor::Analysis::TemplateFile*> named_;
    Reader reader_{*this};
    kel::Stencilor::Analysis::TemplateFiles files_{reader_};
};

} // namespace stencilor

#endif
