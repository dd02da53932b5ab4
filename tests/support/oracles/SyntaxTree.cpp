#include "SyntaxTree.h"

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <algorithm>

namespace support {

namespace {

using namespace kel::Stencilor::internal;

struct Description : boost::static_visitor<std::string> {
    std::string operator()(const if_expr& node) const {
        std::string text = "if(" + node.name + " ?" + listed(node.then_list);
        if (!node.else_list.empty()) {
            text += " :" + listed(node.else_list);
        }
        return text + ")";
    }
    std::string operator()(const for_expr& node) const {
        return "for(" + node.variable + " in " + node.list_name + " ?" + listed(node.body) + ")";
    }
    std::string operator()(const replace_expr& node) const { return "{" + node.name + "}"; }
    std::string operator()(const include_expr& node) const { return "include(" + node.path + ")"; }
    std::string operator()(const std::string& text) const { return "'" + text + "'"; }

    static std::string listed(const content_list& nodes) {
        return nodes.empty() ? "" : " " + describe(nodes);
    }
};

/// Visits two nodes of the same kind; other pairs differ.
struct Equality : boost::static_visitor<bool> {
    bool operator()(const if_expr& one, const if_expr& other) const {
        return one.name == other.name && areTheSame(one.then_list, other.then_list) &&
               areTheSame(one.else_list, other.else_list);
    }
    bool operator()(const for_expr& one, const for_expr& other) const {
        return one.variable == other.variable && one.list_name == other.list_name &&
               areTheSame(one.body, other.body);
    }
    bool operator()(const replace_expr& one, const replace_expr& other) const {
        return one.name == other.name;
    }
    bool operator()(const include_expr& one, const include_expr& other) const {
        return one.path == other.path;
    }
    bool operator()(const std::string& one, const std::string& other) const { return one == other; }
    template <typename One, typename Other>
    bool operator()(const One&, const Other&) const {
        return false;
    }
};

} // namespace

bool areTheSame(const content_list& some, const content_list& others) {
    return std::equal(some.begin(), some.end(), others.begin(), others.end(),
                      [](const content& one, const content& other) {
                          return boost::apply_visitor(Equality(), one, other);
                      });
}

std::string describe(const content_list& nodes) {
    std::string text;
    for (const content& node : nodes) {
        text += (text.empty() ? "" : " ") + boost::apply_visitor(Description(), node);
    }
    return text;
}

} // namespace support
