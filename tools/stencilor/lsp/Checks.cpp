#include <libStencilorAnalysis/check/ContextCheck.h>
#include <libStencilorAnalysis/check/EmptyLines.h>
#include <tools/stencilor/lsp/Checks.h>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;

void Checks::noteChange(const std::string& name) {
    areDue_ = true;
    pending_.insert(name);
    for (const auto& [checked, check] : checks_) {
        if (check->reached.contains(name)) {
            pending_.insert(checked);
        }
    }
}

void Checks::noteChangeOfAll() {
    areDue_ = true;
    for (const auto& [name, document] : documents_.all()) {
        pending_.insert(name);
    }
    for (const auto& [name, check] : checks_) {
        pending_.insert(name);
    }
}

std::optional<std::set<std::string>> Checks::run(const GoOn& goOn) {
    while (!pending_.empty()) {
        checkSyntax(*pending_.begin());
        pending_.erase(pending_.begin());
        if (!goOn()) {
            return std::nullopt;
        }
    }
    for (const auto& [name, check] : checks_) {
        if (!checkNames(*check, goOn)) {
            return std::nullopt;
        }
    }
    areDue_ = false;
    return std::exchange(affected_, {});
}

void Checks::checkSyntax(const std::string& name) {
    if (const auto old = checks_.find(name); old != checks_.end()) {
        affected_.merge(old->second->reached);
        checks_.erase(old);
    }
    const Document* const document = documents_.find(name);
    if (document == nullptr || !document->isTemplate()) {
        return;
    }
    auto check = std::make_unique<Check>(workspace_.surroundingsOf(*document), documents_);
    check->file = &check->files.add(
        {.name = name, .identity = name, .text = {}, .file = document->sharedSyntax()});
    CheckReport report;
    kel::Stencilor::Analysis::checkSyntax(check->files, *check->file, report);
    for (const TemplateFile* const file : report.files) {
        check->reached.insert(file->name());
        if (workspace_.settings().emptyLines) {
            findEmptyLines(*file, report.findings);
        }
    }
    check->ofSyntax = std::move(report.findings);
    affected_.insert(check->reached.begin(), check->reached.end());
    checks_.emplace(name, std::move(check));
}

/// True for a template whose names are looked up on its own. A template that is included by another
/// open template needs the names of that one. If templates include each other, each is looked up on
/// its own.
bool Checks::hasOwnNames(const Check& check) const {
    const ContextFile* const context = check.around.context.get();
    const std::string& name = check.file->name();
    return context != nullptr && context->context &&
           (check.around.isNamed ||
            std::none_of(checks_.begin(), checks_.end(), [&](const auto& other) {
                return other.first != name && other.second->reached.contains(name) &&
                       !check.reached.contains(other.first);
            }));
}

/// Returns false if it was interrupted.
bool Checks::checkNames(Check& check, const GoOn& goOn) {
    const bool looksUpNames = !check.file->fault().isPresent() && hasOwnNames(check);
    if (check.looksUpNames == looksUpNames) {
        return true;
    }
    affected_.insert(check.reached.begin(), check.reached.end());
    check.ofNames.clear();
    check.looksUpNames.reset();
    bool isInterrupted = false;
    if (looksUpNames) {
        check.ofNames = findContextFaults(
            check.files, *check.file, *check.around.context->context, ContextWalk::Extent::Whole,
            {.goOn = [&] { return !(isInterrupted = isInterrupted || !goOn()); }});
    }
    if (!isInterrupted) {
        check.looksUpNames = looksUpNames;
    }
    return !isInterrupted;
}

std::vector<Finding> Checks::findingsIn(const std::string& name) const {
    std::vector<Finding> found;
    for (const auto& [checked, check] : checks_) {
        for (const std::vector<Finding>* findings : {&check->ofSyntax, &check->ofNames}) {
            std::copy_if(findings->begin(), findings->end(), std::back_inserter(found),
                         [&name](const Finding& each) { return each.place.file->name() == name; });
        }
    }
    const auto keyOf = [](const Finding& each) {
        return std::tie(each.place.range.begin, each.rule);
    };
    std::stable_sort(
        found.begin(), found.end(),
        [&keyOf](const Finding& one, const Finding& other) { return keyOf(one) < keyOf(other); });
    found.erase(std::unique(found.begin(), found.end(),
                            [&keyOf](const Finding& one, const Finding& other) {
                                return keyOf(one) == keyOf(other);
                            }),
                found.end());
    return found;
}

Check* Checks::withContextFor(const std::string& name) const {
    const auto own = checks_.find(name);
    if (own != checks_.end() && hasOwnNames(*own->second)) {
        return own->second.get();
    }
    const auto found = std::find_if(checks_.begin(), checks_.end(), [&](const auto& each) {
        return each.second->reached.contains(name) && hasOwnNames(*each.second);
    });
    return found == checks_.end() ? nullptr : found->second.get();
}

std::string Checks::rootOf(const Document& document) {
    if (const Check* const check = withContextFor(document.name)) {
        return check->around.root;
    }
    const auto including = std::find_if(checks_.begin(), checks_.end(), [&](const auto& each) {
        return each.first != document.name && each.second->reached.contains(document.name);
    });
    return including != checks_.end() ? including->second->around.root
                                      : workspace_.surroundingsOf(document).root;
}

std::vector<std::shared_ptr<const ContextFile>> Checks::contexts() const {
    std::vector<std::shared_ptr<const ContextFile>> contexts;
    for (const auto& [name, check] : checks_) {
        const auto& context = check->around.context;
        if (context && std::find(contexts.begin(), contexts.end(), context) == contexts.end()) {
            contexts.push_back(context);
        }
    }
    return contexts;
}

} // namespace stencilor::lsp
