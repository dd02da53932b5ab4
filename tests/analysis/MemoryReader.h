#ifndef TESTS_ANALYSIS_MEMORYREADER_H
#define TESTS_ANALYSIS_MEMORYREADER_H

#include <libStencilorAnalysis/template/TemplateReader.h>

#include <map>
#include <string>
#include <utility>

namespace kel::Stencilor::Analysis {

/// Templates in memory. One with the text "?" cannot be read.
class MemoryReader final : public TemplateReader {
  public:
    explicit MemoryReader(std::map<std::string, std::string> texts) : texts_(std::move(texts)) {}

    Answer find(const std::string& path, TemplateText& found) override {
        ++asked_[path];
        found = {"memory:" + path, path, ""};
        const auto text = texts_.find(path);
        if (text == texts_.end()) {
            return Answer::Missing;
        }
        found.text = text->second;
        return found.text == "?" ? Answer::Unreadable : Answer::Found;
    }

    const std::map<std::string, int>& asked() const { return asked_; }

  private:
    std::map<std::string, std::string> texts_;
    std::map<std::string, int> asked_;
};

} // namespace kel::Stencilor::Analysis

#endif
