#include <libKel/Folder.h>
#include <libStencilor/Template.h>
#include <libStencilor/modern/source_lock.h>
#include <libStencilor/modern/template_of_file.h>

#include <chrono>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

namespace kel::Stencilor {

namespace {

constexpr std::int64_t unsettledNanoseconds = 2'000'000'000;

std::int64_t nanosecondsNow() {
    using namespace std::chrono;
    return duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
}

Folder openFolder(const String& root) {
    std::optional<Folder> folder = Folder::open(root);
    if (!folder) {
        throw std::invalid_argument("not a directory that can be entered: " + root.str());
    }
    return *std::move(folder);
}

} // namespace

namespace internal {

/// The files of a directory, with the cached templates.
class template_files {
  public:
    explicit template_files(const String& root) : folder_(openFolder(root)) {}

    TemplateSource::Answer find(const String& path, std::uint64_t maxBytes,
                                std::optional<Template>& found);

  private:
    /// A parsed file, and its state at that time.
    struct parsed_file {
        FileState state;
        Template made;
    };

    std::optional<Template> findKept(const String& path, const FileState& state);
    TemplateSource::Answer load(const String& path, std::uint64_t maxBytes,
                                std::optional<Template>& found);

    void keep(const String& path, const parsed_file& file);
    void drop(const String& path);

    const Folder folder_;

    // Guarded by the lock of all sources. Each file is cached under only one of its paths, so that
    // templates cannot fill the cache by writing a path in different ways.
    std::map<String, parsed_file> parsed_;
    std::map<std::pair<std::uint64_t, std::uint64_t>, String> paths_; // by identity
};

TemplateSource::Answer template_files::find(const String& path, std::uint64_t maxBytes,
                                            std::optional<Template>& found) {
    const std::optional<FileState> state = folder_.find(path);
    if (!state) {
        const source_change lock;
        drop(path);
        return TemplateSource::Answer::Missing;
    }
    found = findKept(path, *state);
    if (!found) {
        return load(path, maxBytes, found);
    }
    if (found->text().size() > maxBytes) {
        found.reset();
        return TemplateSource::Answer::TooLarge;
    }
    return TemplateSource::Answer::Found;
}

std::optional<Template> template_files::findKept(const String& path, const FileState& state) {
    const source_reading lock;
    const auto kept = parsed_.find(path);
    const bool same = kept != parsed_.end() && kept->second.state == state;
    return same ? std::optional(kept->second.made) : std::nullopt;
}

/// Reads and parses a file, and caches it unless it could still change without a change of its
/// state.
TemplateSource::Answer template_files::load(const String& path, std::uint64_t maxBytes,
                                            std::optional<Template>& found) {
    const std::int64_t before = nanosecondsNow();
    FileState state;
    const TemplateSource::Answer answer =
        templateOfFile(path, maxBytes, found, [&](std::uint64_t most, auto& bytes) {
            return folder_.load(path, most, bytes, state);
        });
    if (answer != TemplateSource::Answer::Found) {
        return answer;
    }
    const source_change lock;
    drop(path);
    if (found->text().size() == state.size && state.modified <= before - unsettledNanoseconds) {
        keep(path, {state, *found});
    }
    return answer;
}

void template_files::keep(const String& path, const parsed_file& file) {
    const std::pair identity(file.state.volume, file.state.index);
    if (!paths_.contains(identity)) {
        parsed_.emplace(path, file);
        paths_.emplace(identity, path);
    }
}

void template_files::drop(const String& path) {
    const auto kept = parsed_.find(path);
    if (kept != parsed_.end()) {
        paths_.erase({kept->second.state.volume, kept->second.state.index});
        parsed_.erase(kept);
    }
}

} // namespace internal

FileTemplates::FileTemplates(const String& root)
    : files_(std::make_unique<internal::template_files>(root)) {}
FileTemplates::~FileTemplates() = default;

TemplateSource::Answer FileTemplates::find(const String& path, std::uint64_t maxBytes,
                                           std::optional<Template>& found) {
    return files_->find(path, maxBytes, found);
}

} // namespace kel::Stencilor
