#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

constexpr std::size_t deepest = 100;

bool isFirst(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_';
}

bool contains(SyntaxRange range, std::size_t offset) {
    return !range.isEmpty() && range.begin <= offset && offset <= range.end;
}

std::string_view variableOf(const TemplateFile& file, std::size_t loop) {
    return file.slice(file.parts()[loop].name);
}

/// The innermost loop around a part whose variable is a prefix of a name.
std::size_t findLoopAround(const TemplateFile& file, std::size_t part, std::string_view name) {
    std::size_t loop = file.loopAround(part);
    for (std::size_t i = 0; loop != TemplateFile::none && i < deepest; ++i) {
        if (hasPrefix(name, variableOf(file, loop))) {
            return loop;
        }
        loop = file.loopAround(loop);
    }
    return TemplateFile::none;
}

/// True for a loop in a template with so many errors that the parts after some of them, among them
/// the end of the loop, are not known.
bool isCut(const TemplateFile& file, std::size_t loop) {
    return file.endOf(loop) <= loop;
}

std::size_t endOfKnown(const TemplateFile& file, std::size_t loop) {
    return isCut(file, loop) ? file.parts().size() : file.endOf(loop);
}

} // namespace

bool isName(std::string_view text) {
    return !text.empty() && isFirst(text.front()) &&
           std::all_of(text.begin(), text.end(), [](char byte) {
               return isFirst(byte) || (byte >= '0' && byte <= '9') || byte == '.' || byte == '/';
           });
}

bool hasPrefix(std::string_view name, std::string_view variable) {
    return !variable.empty() && name.size() > variable.size() && name[variable.size()] == '.' &&
           name.starts_with(variable);
}

std::optional<NameAt> findNameAt(const TemplateFile& file, std::size_t offset) {
    const std::size_t at = partAt(file, offset);
    if (at == TemplateFile::none) {
        return std::nullopt;
    }
    const SyntaxElement& part = file.parts()[at];
    if (contains(part.list, offset)) {
        return NameAt{at, part.list, NameAt::Role::Value};
    }
    if (!contains(part.name, offset)) {
        return std::nullopt;
    }
    return NameAt{at, part.name,
                  part.kind == Kind::For       ? NameAt::Role::Variable
                  : part.kind == Kind::Include ? NameAt::Role::Path
                                               : NameAt::Role::Value};
}

std::size_t findLoopOf(const TemplateFile& file, std::size_t part) {
    const NameUse use = nameOf(file, part);
    return use.name.isEmpty() ? TemplateFile::none : findLoopAround(file, part, use.text());
}

SyntaxRange prefixOf(const TemplateFile& file, std::size_t part) {
    const std::size_t loop = findLoopOf(file, part);
    if (loop == TemplateFile::none) {
        return {};
    }
    const unsigned int begin = nameOf(file, part).name.begin;
    return {begin, begin + static_cast<unsigned int>(variableOf(file, loop).size())};
}

std::size_t findLoopAt(const TemplateFile& file, std::size_t offset) {
    const auto name = findNameAt(file, offset);
    if (!name || name->role == NameAt::Role::Path) {
        return TemplateFile::none;
    }
    if (name->role == NameAt::Role::Variable) {
        return name->part;
    }
    return contains(prefixOf(file, name->part), offset) ? findLoopOf(file, name->part)
                                                        : TemplateFile::none;
}

std::vector<SyntaxRange> findVariable(const TemplateFile& file, std::size_t loop) {
    std::vector<SyntaxRange> found = {file.parts()[loop].name};
    for (std::size_t i = loop + 1; i < endOfKnown(file, loop); ++i) {
        if (findLoopOf(file, i) == loop) {
            found.push_back(prefixOf(file, i));
        }
    }
    return found;
}

std::vector<SyntaxRange> findSameNames(const TemplateFile& file, const NameAt& name) {
    std::vector<SyntaxRange> found;
    for (std::size_t i = 0; i < file.parts().size(); ++i) {
        const SyntaxElement& part = file.parts()[i];
        const bool isPath = name.role == NameAt::Role::Path;
        const SyntaxRange range = !isPath                      ? nameOf(file, i).name
                                  : part.kind == Kind::Include ? part.name
                                                               : SyntaxRange();
        if (!range.isEmpty() && file.slice(range) == file.slice(name.range)) {
            found.push_back(range);
        }
    }
    return found;
}

std::string whyNotRename(const TemplateFile& file, std::size_t loop, std::string_view name) {
    if (!isName(name)) {
        return quote(name) + " is not a name: it has letters, digits, '_', '.' and '/', and begins "
                             "with a letter or '_'";
    }
    if (isCut(file, loop)) {
        return "the template has too many errors to find every use of the variable";
    }
    for (std::size_t i = loop + 1; i < file.endOf(loop); ++i) {
        const std::string_view used = nameOf(file, i).text();
        const std::size_t owner = findLoopOf(file, i);
        if (owner == loop) {
            const std::string renamed =
                std::string(name) + std::string(used.substr(variableOf(file, loop).size()));
            // Loops between the use and this one take precedence.
            for (std::size_t inner = file.loopAround(i); inner != loop;
                 inner = file.loopAround(inner)) {
                if (hasPrefix(renamed, variableOf(file, inner))) {
                    return quote(renamed) + " would belong to an inner loop, whose variable is " +
                           quote(variableOf(file, inner));
                }
            }
        } else if (hasPrefix(used, name) && (owner == TemplateFile::none || owner < loop)) {
            return quote(used) + " is already used inside the loop, and would belong to it";
        }
    }
    return "";
}

} // namespace kel::Stencilor::Analysis
