#ifndef TESTS_ANALYSIS_FILEREADER_H
#define TESTS_ANALYSIS_FILEREADER_H

#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libStencilorAnalysis/template/TemplateReader.h>

namespace kel::Stencilor::Analysis {

/// Finds files like the engine.
class FileReader final : public TemplateReader {
  public:
    Answer find(const std::string& path, TemplateText& found) override {
        found.name = path;
        found.identity = path;
        if (!FileSystem::exists(path)) {
            return Answer::Missing;
        }
        Buffer<unsigned char> bytes;
        if (!FileSystem::loadFile(path, bytes, nullptr)) {
            return Answer::Unreadable;
        }
        found.text.assign(reinterpret_cast<const char*>(bytes.data), bytes.size);
        return Answer::Found;
    }
};

} // namespace kel::Stencilor::Analysis

#endif
