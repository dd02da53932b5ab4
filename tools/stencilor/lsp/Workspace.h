#ifndef TOOLS_STENCILOR_LSP_WORKSPACE_H
#define TOOLS_STENCILOR_LSP_WORKSPACE_H

#include <libKel/Folder.h>
#include <libStencilor/Value.h>
#include <libStencilorAnalysis/template/TemplateReader.h>
#include <tools/stencilor/commands/ProjectFile.h>
#include <tools/stencilor/lsp/Documents.h>
#include <tools/stencilor/system/System.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace stencilor::lsp {

/// The client's settings, from its `initializationOptions` or its configuration.
struct Settings {
    std::optional<std::string> root;
    std::optional<std::string> context;
    bool positions = false;  ///< like the option `--positions`
    bool emptyLines = false; ///< report tags that leave an empty line
};

/// A context file as it was read.
struct ContextFile {
    std::string name;
    std::string text;
    std::optional<kel::Stencilor::Context> context; ///< nothing if the text is invalid
    std::string fault{};                            ///< why it is invalid
    kel::Stencilor::SyntaxRange place{};            ///< of the fault
};

/// Where a template looks up its includes and its names.
struct Surroundings {
    std::string root;
    std::shared_ptr<const ContextFile> context; ///< null if none is known
    bool isNamed = false; ///< a context belongs to this template, not only to those that include it
};

/// The files around the documents, and the settings for them.
///
/// Ownership: borrows the documents.
/// Errors: those in a setting or a project file are kept for `takeFaults`; the setting then counts
///   as absent.
class Workspace {
  public:
    explicit Workspace(const Documents& documents) : documents_(documents) {}

    void setFolders(std::vector<std::string> folders) { folders_ = std::move(folders); }
    const std::vector<std::string>& folders() const { return folders_; }

    void set(const Json& settings);
    const Settings& settings() const { return settings_; }

    Surroundings surroundingsOf(const Document& document);

    /// The text of a buffer or a file; nothing if there is none, or it is too long to be edited.
    std::optional<std::string> read(const std::string& name) const;

    /// The faults found since the last call, each once.
    std::vector<std::string> takeFaults();

  private:
    struct KnownContext {
        std::shared_ptr<const ContextFile> file;
        std::optional<system::FileState> state; // of a file
        bool positions = false;
    };

    std::optional<std::string> textIn(const Json& settings, const char* name);
    bool isOn(const Json& settings, const char* name);
    std::string folderAround(const Document& document) const;
    std::optional<Project> projectOf(const Document& document);
    std::string rootOf(const Document& document, const std::optional<Project>& project);
    bool exists(const std::string& name) const;
    std::shared_ptr<const ContextFile> context(const std::string& path);
    void report(const std::string& fault);

    const Documents& documents_;
    std::vector<std::string> folders_;
    Settings settings_;
    std::map<std::string, KnownContext> contexts_;
    std::set<std::string> reported_;
    std::vector<std::string> faults_;
};

/// The templates in a root, read from the editor's buffers or, if not open, from files.
///
/// Ownership: borrows the documents.
class BufferedFolder final : public kel::Stencilor::Analysis::TemplateReader {
  public:
    /// Longer files are not read.
    static constexpr std::uint64_t longestFile = std::uint64_t{64} << 20;

    BufferedFolder(std::string root, const Documents& documents);

    Answer find(const std::string& path, kel::Stencilor::Analysis::TemplateText& found) override;

    /// The name of the file that `path` includes; empty if there is none.
    std::string locate(const std::string& path) const;

  private:
    std::string root_;
    std::optional<kel::Folder> folder_;
    const Documents& documents_;
};

} // namespace stencilor::lsp

#endif
