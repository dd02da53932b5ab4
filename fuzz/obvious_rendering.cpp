#include "obvious_rendering.h"

#include "../tests/support/ObviousUtf8.h"

#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libStencilor/context/context_access.h>
#include <libStencilor/template/parse_template.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <utility>
#include <vector>

namespace fuzz {

namespace {

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

using Scopes = std::vector<const ContextBase*>;
using Prefixes = std::vector<std::string>;

const ContextBase* findInScope(const ContextBase* scope, std::string name,
                               const std::string& prefix) {
    if (name.starts_with(prefix)) {
        name.erase(0, prefix.size());
    }
    return scope == nullptr ? nullptr : scope->find(name);
}

const ContextBase* findInScopes(Scopes scopes, const std::string& name, const Prefixes& prefixes) {
    for (; !scopes.empty(); scopes.pop_back()) {
        for (Prefixes left = prefixes; !left.empty(); left.pop_back()) {
            if (const ContextBase* found = findInScope(scopes.back(), name, left.back())) {
                return found;
            }
        }
        if (const ContextBase* found = findInScope(scopes.back(), name, "")) {
            return found;
        }
    }
    return nullptr;
}

Rendered renderList(const content_list& nodes, Scopes scopes, const ContextBase* scope,
                    const Prefixes& prefixes);

/// One node, with the scopes and prefixes that are in force where it stands.
struct Visit : boost::static_visitor<Rendered> {
    Visit(Scopes inForce, Prefixes ofLoops)
        : scopes(std::move(inForce)), prefixes(std::move(ofLoops)) {}

    Rendered operator()(const std::string& text) const { return {text, ""}; }

    Rendered operator()(const replace_expr& node) const {
        const ContextBase* found = findInScopes(scopes, node.name, prefixes);
        if (found == nullptr) {
            return {"", "Could not find expected replacement named \"" + node.name + "\"\n"};
        }
        const auto* string = dynamic_cast<const ContextString*>(found);
        if (string == nullptr) {
            return {"", "The replacement is not of type String for \"" + node.name + "\""};
        }
        return {context_access::text(*string).str().c_str(), ""};
    }

    Rendered operator()(const if_expr& node) const {
        const ContextBase* found = findInScopes(scopes, node.name, prefixes);
        if (found == nullptr) {
            return {"", "Could not find expected boolean named \"" + node.name + "\n"};
        }
        const auto* boolean = dynamic_cast<const ContextBoolean*>(found);
        if (boolean == nullptr) {
            return {"", "Expected named \"" + node.name + "\" to be of type ContextBoolean\n"};
        }
        return renderList(context_access::truth(*boolean) ? node.then_list : node.else_list, scopes,
                          boolean, prefixes);
    }

    Rendered operator()(const for_expr& node) const {
        const ContextBase* found = findInScopes(scopes, node.list_name, prefixes);
        if (found == nullptr) {
            return {"",
                    "Could not find expected for-expression named \"" + node.list_name + "\"\n"};
        }
        const auto* list = dynamic_cast<const ContextIterable*>(found);
        if (list == nullptr) {
            return {"",
                    "Expected named \"" + node.list_name + "\" to be of type ContextIterable\n"};
        }
        Prefixes extended = prefixes;
        extended.push_back(node.variable + ".");
        Rendered all;
        for (const ContextBase* element : context_access::elements(*list)) {
            const Rendered turn = renderList(node.body, scopes, element, extended);
            all.output += turn.output;
            all.errors += turn.errors;
        }
        return all;
    }

    Rendered operator()(const include_expr& node) const {
        if (!kel::FileSystem::exists(node.path)) {
            return {"", "Could not include file \"" + node.path + "\", file doesn't exist"};
        }
        kel::Buffer<unsigned char> file;
        if (!kel::FileSystem::loadFile(node.path, file, nullptr)) {
            return {"", "Could not load file \"" + node.path + "\""};
        }
        const std::string_view text(reinterpret_cast<const char*>(file.data), file.size);
        syntax_tree tree;
        if (!parseTemplate(text, tree.nodes)) {
            return {};
        }
        return {renderList(tree.nodes, scopes, nullptr, {}).output, ""};
    }

    Scopes scopes;
    Prefixes prefixes;
};

Rendered renderList(const content_list& nodes, Scopes scopes, const ContextBase* scope,
                    const Prefixes& prefixes) {
    scopes.push_back(scope);
    Rendered all;
    for (const content& node : nodes) {
        const Rendered one = boost::apply_visitor(Visit(scopes, prefixes), node);
        all.output += one.output;
        all.errors += one.errors;
    }
    return all;
}

} // namespace

Rendered obviouslyRendered(std::string_view text, const ContextBase& context) {
    syntax_tree tree;
    if (!parseTemplate(text, tree.nodes)) {
        return {"", "Could not build formatted output: Failed to parse input correctly."};
    }
    Rendered all;
    for (const content& node : tree.nodes) {
        const Rendered one = boost::apply_visitor(Visit({&context}, {}), node);
        all.output += support::obviouslyRepairedUtf8(one.output);
        all.errors += one.errors;
    }
    return all;
}

} // namespace fuzz
