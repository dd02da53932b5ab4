#include <tools/stencilor/deps.h>
#include <tools/stencilor/files.h>
#include <tools/stencilor/template_survey.h>

#include <set>
#include <string>
#include <vector>

namespace stencilor {

namespace {

/// Each file once, and not the template itself.
class PathList final : public Surveyor {
  public:
    explicit PathList(const TemplateFile& file) : seen_{&file} {}

    void visitName(const Use&) override {}
    void visitInclusion(const std::string& path, const TemplateFile* file) override {
        if (file != nullptr ? seen_.insert(file).second : missing_.insert(path).second) {
            paths_.push_back(path);
        }
    }

    const std::vector<std::string>& paths() const { return paths_; }

  private:
    std::set<const TemplateFile*> seen_;
    std::set<std::string> missing_;
    std::vector<std::string> paths_;
};

std::string writeList(const std::vector<std::string>& paths) {
    std::string text;
    for (const std::string& path : paths) {
        text += path + "\n";
    }
    return text;
}

std::string writeRule(const DepsOptions& options, const std::vector<std::string>& paths) {
    std::string rule = escapeForMake(*options.target) + ":";
    if (options.templateFile != standardStream) {
        rule += " " + escapeForMake(options.templateFile);
    }
    for (const std::string& path : paths) {
        rule += " \\\n  " + escapeForMake(path);
    }
    return rule + "\n";
}

} // namespace

ExitStatus deps(const DepsOptions& options) {
    TemplateFiles files;
    const TemplateFile& file = files.open(options.templateFile, options.root);
    if (file.fault().isPresent()) {
        printFindings({describeFault(file)});
        return exitRejected;
    }
    PathList list(file);
    const ExitStatus status = printFindings(survey(files, file, list));
    writeOutput(options.outputFile,
                options.target ? writeRule(options, list.paths()) : writeList(list.paths()));
    return status;
}

std::string escapeForMake(std::string_view path) {
    std::string escaped;
    std::size_t backslashes = 0;
    for (const char byte : path) {
        if (byte == '\n' || byte == '\r') {
            throw Failure("a rule of Make cannot hold the line break in " + std::string(path));
        }
        if (byte == ' ' || byte == '\t') {
            escaped.append(backslashes + 1, '\\'); // those before it would escape each other
        } else if (byte == '#') {
            escaped += '\\';
        } else if (byte == '$') {
            escaped += '$';
        }
        escaped += byte;
        backslashes = byte == '\\' ? backslashes + 1 : 0;
    }
    return escaped;
}

} // namespace stencilor
