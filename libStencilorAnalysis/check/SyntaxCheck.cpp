#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <libStencilorAnalysis/check/TextCheck.h>
#include <libStencilorAnalysis/finding/Habit.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

/// `a -> b -> a` for `count` files that include each other; the middle of long chains is omitted.
template <typename NameAt>
std::string joinCycle(std::size_t count, const NameAt& nameAt) {
    constexpr std::size_t most = 6;
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        if (count > most && i == most / 2) {
            text += "... -> ";
            i = count - most / 2;
        }
        text += nameAt(i) + " -> ";
    }
    return text + nameAt(0);
}

/// Finds includes that never end, because no condition or loop can prevent them.
class EndlessIncludes {
  public:
    /// Adds an include outside all blocks.
    void add(const TemplateFile& from, SyntaxRange name, const TemplateFile& to) {
        files_[&from].edges.push_back({name, &to});
    }

    std::vector<Finding> find() {
        for (auto& [file, node] : files_) {
            walk(*file, node);
        }
        return std::move(findings_);
    }

  private:
    struct Edge {
        SyntaxRange name;
        const TemplateFile* to;
    };
    struct Node {
        std::vector<Edge> edges{};
        std::size_t walked = 0; // of the edges
        bool isOpen = false;
        std::size_t depth = 0; // in the path, if it is open
    };
    struct Step {
        const TemplateFile* file;
        Node* node;
    };

    void walk(const TemplateFile& file, Node& first) {
        enter(file, first);
        while (!path_.empty()) {
            const auto [from, node] = path_.back();
            if (node->walked == node->edges.size()) {
                node->isOpen = false;
                path_.pop_back();
                continue;
            }
            const Edge& edge = node->edges[node->walked++];
            const auto next = files_.find(edge.to);
            if (next == files_.end()) {
                continue;
            }
            if (next->second.isOpen) {
                findings_.push_back(describe({from, edge.name}, next->second));
            } else if (next->second.walked == 0) {
                enter(*edge.to, next->second);
            }
        }
    }

    void enter(const TemplateFile& file, Node& node) {
        if (node.walked == 0) {
            node.isOpen = true;
            node.depth = path_.size();
            path_.push_back({&file, &node});
        }
    }

    Finding describe(const Place& place, const Node& again) const {
        const auto nameAt = [this, &again](std::size_t i) {
            return path_[again.depth + i].file->name();
        };
        return {.rule = Rule::EndlessInclude,
                .place = place,
                .message = "the file includes itself unconditionally: " +
                           joinCycle(path_.size() - again.depth, nameAt)};
    }

    std::map<const TemplateFile*, Node> files_;
    std::vector<Step> path_;
    std::vector<Finding> findings_;
};

class SyntaxCheck final : private TemplateWalk {
  public:
    SyntaxCheck(TemplateFiles& files, CheckReport& report) : TemplateWalk(files), report_(report) {}

    void check(const TemplateFile& file) {
        const std::size_t before = report_.findings.size();
        if (!add(file)) {
            return;
        }
        walkFile(file);
        std::set<std::pair<const TemplateFile*, std::uint32_t>> places;
        std::vector<Finding> endless = endless_.find();
        for (const Finding& finding : endless) {
            places.emplace(finding.place.file, finding.place.range.begin);
        }
        const auto found = report_.findings.begin() + static_cast<std::ptrdiff_t>(before);
        const auto rest =
            std::remove_if(found, report_.findings.end(), [&places](const Finding& finding) {
                return finding.rule == Rule::IncludeCycle &&
                       places.contains({finding.place.file, finding.place.range.begin});
            });
        report_.findings.erase(rest, report_.findings.end());
        std::move(endless.begin(), endless.end(), std::back_inserter(report_.findings));
    }

  private:
    /// Returns false for a file that was already checked.
    bool add(const TemplateFile& file) {
        if (!report_.checked.insert(&file).second) {
            return false;
        }
        report_.files.push_back(&file);
        if (file.fault().isPresent()) {
            describeFaults(file, report_.findings);
        }
        findWellFormedHabits(file, report_.findings);
        checkText(file, report_.findings);
        openBlocks_.push_back(0);
        return true;
    }

    void leaveFile() override { openBlocks_.pop_back(); }

    std::size_t visit(const TemplateFile& file, std::size_t index) override {
        const Kind kind = file.parts()[index].kind;
        openBlocks_.back() += kind == Kind::If || kind == Kind::For ? 1 : 0;
        openBlocks_.back() -= kind == Kind::EndIf || kind == Kind::EndFor ? 1 : 0;
        return index + 1;
    }

    void visitInclusion(const Inclusion& inclusion) override {
        const TemplateFile* const file = inclusion.to.file;
        if (file == nullptr) {
            report_.findings.push_back(describeFailure(inclusion));
            return;
        }
        if (openBlocks_.back() == 0 && !inclusion.from.fault().isPresent()) {
            endless_.add(inclusion.from, inclusion.part.name, *file);
        }
        if (isOnPath(*file)) {
            report_.findings.push_back(describeCycle(inclusion));
        } else if (add(*file)) {
            enterFile(*file);
        }
    }

    Finding describeCycle(const Inclusion& inclusion) const {
        const std::size_t begin = positionOnPath(*inclusion.to.file);
        return {.rule = Rule::IncludeCycle,
                .place = {&inclusion.from, inclusion.part.name},
                .message = "the file includes itself: " +
                           joinCycle(path().size() - begin, [this, begin](std::size_t i) {
                               return path()[begin + i]->name();
                           })};
    }

    CheckReport& report_;
    EndlessIncludes endless_;
    std::vector<std::size_t> openBlocks_; // of the files being walked
};

} // namespace

void checkSyntax(TemplateFiles& files, const TemplateFile& file, CheckReport& report) {
    SyntaxCheck(files, report).check(file);
}

std::vector<Finding> sortFindings(CheckReport report) {
    // A file may have been read for several roots.
    std::unordered_map<std::string_view, std::size_t> byName;
    std::unordered_map<const TemplateFile*, std::size_t> order;
    for (const TemplateFile* file : report.files) {
        order.emplace(file, byName.emplace(file->name(), byName.size()).first->second);
    }
    const auto keyOf = [&order](const Finding& finding) {
        return std::tuple(order.at(finding.place.file), finding.place.range.begin, finding.rule);
    };
    std::vector<Finding>& findings = report.findings;
    std::stable_sort(
        findings.begin(), findings.end(),
        [&keyOf](const auto& one, const auto& other) { return keyOf(one) < keyOf(other); });
    const auto same = [&keyOf](const auto& one, const auto& other) {
        return keyOf(one) == keyOf(other);
    };
    findings.erase(std::unique(findings.begin(), findings.end(), same), findings.end());
    return std::move(report.findings);
}

} // namespace kel::Stencilor::Analysis
