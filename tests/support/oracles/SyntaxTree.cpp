#include "SyntaxTree.h"

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

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

} // namespace

std::string describe(const content_list& nodes) {
    std::string text;
    for (const content& node : nodes) {
        text += (text.empty() ? "" : " ") + boost::apply_visitor(Description(), node);
    }
    return text;
}

} // namespace support
