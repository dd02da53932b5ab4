#include <tools/stencilor/files.h>
#include <tools/stencilor/name_list.h>
#include <tools/stencilor/names.h>
#include <tools/stencilor/skeleton.h>

namespace stencilor {

namespace {

ExitStatus writeNames(const NamesOptions& options, TemplateFiles& files, const TemplateFile& file) {
    NameList list;
    const ExitStatus status = printFindings(survey(files, file, list));
    writeOutput(options.outputFile,
                options.format == NamesFormat::Json ? list.formatJson() : list.formatText());
    return status;
}

ExitStatus writeSkeleton(const NamesOptions& options, TemplateFiles& files,
                         const TemplateFile& file) {
    Skeleton skeleton;
    const ExitStatus status = printFindings(survey(files, file, skeleton));
    for (const std::string& conflict : skeleton.conflicts()) {
        printError(file.name() + ": " + conflict);
    }
    writeOutput(options.outputFile, skeleton.formatJson());
    return skeleton.conflicts().empty() ? status : exitMessages;
}

} // namespace

ExitStatus names(const NamesOptions& options) {
    TemplateFiles files;
    const TemplateFile& file = files.open(options.templateFile, options.root);
    if (file.fault().isPresent()) {
        printFindings({describeFault(file)});
        return exitRejected;
    }
    return options.format == NamesFormat::Skeleton ? writeSkeleton(options, files, file)
                                                   : writeNames(options, files, file);
}

} // namespace stencilor
