#ifndef BENCH_LANGUAGE_H
#define BENCH_LANGUAGE_H

#include <map>
#include <string>

namespace bench {

/// A template and those that it includes, by path. They are written once, for all engines:
///
///     [name] [element.name] [if name]...[else]...[end] [for element in name]...[end]
///     [include name]
///
/// The file of an include is its name and `.html`.
struct page {
    std::string text;
    std::map<std::string, std::string> included = {};
};

enum class language { stencilor, ctemplate, mustache };

/// Translates a template.
/// @param escaped whether values are escaped for HTML, for engines that leave that decision to the
///   template
std::string translated(const std::string& text, language to, bool escaped = false);

page translated(const page& from, language to, bool escaped);

} // namespace bench

#endif
