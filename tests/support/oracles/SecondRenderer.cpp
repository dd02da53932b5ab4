#include "SecondRenderer.h"

#include "SecondReading.h"

#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libKel/Logging.h>
#include <libStencilor/context/context_access.h>
#include <libStencilor/template/syntax_tree.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <deque>
#include <string>
#include <utility>

namespace support {

namespace {

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;
using kel::String;

using Scopes = std::deque<const ContextBase*>;
using Prefixes = std::deque<std::string>;
using Result = std::pair<std::string, std::string>; // the output and the messages

constexpr const char* notParsed =
    "Could not build formatted output: Failed to parse input correctly.";

kel::Logger* logger = nullptr;

void makeLogger() {
    if (logger == nullptr) {
        kel::LogFactory::createLogger("libStencilor", logger);
    }
}

kel::Logger* loggerForTrace() {
    if (kel::LogFactory::getPriority() > 1) {
        return nullptr;
    }
    makeLogger();
    return logger->threshold > 1 ? nullptr : logger;
}

struct Trace {
    Trace(const char* function, int line)
        : trace(loggerForTrace(), function, "libStencilor/render/content_visit.cpp", line) {}

    kel::TraceLogger trace;
};

void logMessages(const String& errors) {
    if (errors.size() == 0 || kel::LogFactory::getPriority() > 2) {
        return;
    }
    makeLogger();
    if (logger->threshold > 2 || logger->resolvePriority() > 2) {
        return;
    }
    kel::LoggerStream stream;
    stream + "437 " + "Errors: " + errors;
    logger->log(static_cast<kel::LoggerPriority::LOGGER_PRIORITY>(2), stream);
}

bool parse(const String& text, content_list& list) {
    const std::string narrow = text.getLowerByteString().c_str(); // up to its first NUL
    return readOnceMore(narrow, list);
}

unsigned int length(const std::string& text) {
    return static_cast<unsigned int>(text.size());
}

String stripPrefix(const std::string& name, const std::string& prefix) {
    String stripped(name.c_str());
    if (stripped.subString(0, length(prefix)) == prefix.c_str()) {
        stripped = stripped.subString(length(prefix), 0xFFFFFFFF);
    }
    return stripped;
}

const ContextBase* findInScope(const Scopes& scopes, const std::string& name,
                               const std::string& prefix) {
    const String key = stripPrefix(name, prefix);
    return scopes.back() == nullptr ? nullptr : scopes.back()->find(key);
}

const ContextBase* findInScopes(Scopes scopes, const std::string& name, const Prefixes& prefixes) {
    while (!scopes.empty()) {
        Prefixes left = prefixes;
        while (!left.empty()) {
            if (const ContextBase* found = findInScope(scopes, name, left.back())) {
                return found;
            }
            left.pop_back();
        }
        if (const ContextBase* found = findInScope(scopes, name, "")) {
            return found;
        }
        scopes.pop_back();
    }
    return nullptr;
}

Result applyVisitor(content_list list, Scopes scopes, const ContextBase* scope, Prefixes prefixes);
String buildIncluded(const String& text, const Scopes& scopes);

struct Visit : boost::static_visitor<Result> {
    Visit(Scopes scopes_, Prefixes prefixes_)
        : scopes(std::move(scopes_)), prefixes(std::move(prefixes_)) {}

    Result operator()(const std::string& text) const {
        const Trace trace("content_visit::string", 120);
        return {text, ""};
    }

    Result operator()(const if_expr& node) const {
        const Trace trace("content_visit::if_expr", 126);
        const ContextBase* found = findInScopes(scopes, node.name, prefixes);
        if (found == nullptr) {
            return {"", "Could not find expected boolean named \"" + node.name + "\n"};
        }
        const auto* boolean = dynamic_cast<const ContextBoolean*>(found);
        if (boolean == nullptr) {
            return {"", "Expected named \"" + node.name + "\" to be of type ContextBoolean\n"};
        }
        const bool chosen = context_access::isTrue(*boolean);
        return applyVisitor(chosen ? node.then_list : node.else_list, scopes, boolean, prefixes);
    }

    Result operator()(const for_expr& node) const {
        const Trace trace("content_visit::for_expr", 151);
        const ContextBase* found = findInScopes(scopes, node.list_name, prefixes);
        if (found == nullptr) {
            return {"",
                    "Could not find expected for-expression named \"" + node.list_name + "\"\n"};
        }
        const auto* iterable = dynamic_cast<const ContextIterable*>(found);
        if (iterable == nullptr) {
            return {"",
                    "Expected named \"" + node.list_name + "\" to be of type ContextIterable\n"};
        }
        Result result;
        for (const ContextBase* element : context_access::elements(*iterable)) {
            Prefixes extended = prefixes;
            extended.push_back(node.variable + ".");
            const Result turn = applyVisitor(node.body, scopes, element, extended);
            result.first += turn.first;
            result.second += turn.second;
        }
        return result;
    }

    Result operator()(const replace_expr& node) const {
        const Trace trace("content_visit::replace_expr", 184);
        const ContextBase* found = findInScopes(scopes, node.name, prefixes);
        if (found == nullptr) {
            return {"", "Could not find expected replacement named \"" + node.name + "\"\n"};
        }
        const auto* string = dynamic_cast<const ContextString*>(found);
        if (string == nullptr) {
            return {"", "The replacement is not of type String for \"" + node.name + "\""};
        }
        return {context_access::text(*string).getUTF8String().c_str(), ""};
    }

    Result operator()(const include_expr& node) const {
        const Trace trace("content_visit::include_expr", 205);
        if (!kel::FileSystem::exists(String(node.path.c_str()))) {
            return {"", "Could not include file \"" + node.path + "\", file doesn't exist"};
        }
        kel::Buffer<unsigned char> file;
        if (!kel::FileSystem::loadFile(String(node.path.c_str()), file, nullptr)) {
            return {"", "Could not load file \"" + node.path + "\""};
        }
        const String text(reinterpret_cast<const char*>(file.data),
                          static_cast<unsigned int>(file.size));
        return {buildIncluded(text, scopes).getUTF8String().c_str(), ""};
    }

    Scopes scopes;
    Prefixes prefixes;
};

// By value, because every visit needs its own copy.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
Result applyVisitor(content_list list, Scopes scopes, const ContextBase* scope, Prefixes prefixes) {
    const Trace trace("applyVisitor", 230);
    Result result;
    for (const content& node : list) {
        Scopes inner = scopes;
        inner.push_back(scope);
        const Result rendered = boost::apply_visitor(Visit(inner, prefixes), node);
        result.first += rendered.first;
        result.second += rendered.second;
    }
    return result;
}

String buildIncluded(const String& text, const Scopes& scopes, String& errors) {
    const Trace trace("buildOutput", 251);
    content_list list;
    if (!parse(text, list)) {
        errors += String(notParsed);
        return String();
    }
    const Result result = applyVisitor(list, scopes, nullptr, {});
    errors += String(result.second.c_str());
    return String(result.first.c_str());
}

String buildIncluded(const String& text, const Scopes& scopes) {
    String dropped;
    return buildIncluded(text, scopes, dropped);
}

} // namespace

String buildOutputOnceMore(const String& input, const ContextBase& context, String& errors) {
    const Trace trace("buildOutput", 408);
    content_list list;
    if (!parse(input, list)) {
        errors += String(notParsed);
        return String("");
    }
    String rendered;
    for (const content& node : list) {
        const Result result = boost::apply_visitor(Visit({&context}, {}), node);
        String output;
        output.UTF8Decode(result.first.data(), length(result.first), false);
        rendered += output;
        errors += String(result.second.c_str());
    }
    logMessages(errors);
    return rendered;
}

String buildOutputOnceMore(const String& input, const ContextBase& context) {
    String dropped;
    return buildOutputOnceMore(input, context, dropped);
}

} // namespace support
