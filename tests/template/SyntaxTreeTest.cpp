#include "../support/oracles/SyntaxTree.h"

#include "../support/Test.h"

#include <libStencilor/template/parse_template.h>
#include <libStencilor/template/syntax_tree.h>

#include <boost/variant/get.hpp>

namespace kel::Stencilor::internal {
namespace {

static_assert(std::is_same_v<content_list, std::vector<content>>);
static_assert(std::is_aggregate_v<if_expr> && std::is_aggregate_v<for_expr>);
static_assert(std::is_aggregate_v<replace_expr> && std::is_aggregate_v<include_expr>);

TEST(Content, IsInitiallyAnEmptyConditional) {
    const content node;
    EXPECT_EQ(node.which(), 0);
    const auto& record = boost::get<if_expr>(node);
    EXPECT_EQ(record.name, "");
    EXPECT_TRUE(record.then_list.empty());
    EXPECT_TRUE(record.else_list.empty());
}

TEST(Content, NumbersItsAlternatives) {
    EXPECT_EQ(content(if_expr()).which(), 0);
    EXPECT_EQ(content(for_expr()).which(), 1);
    EXPECT_EQ(content(replace_expr()).which(), 2);
    EXPECT_EQ(content(include_expr()).which(), 3);
    EXPECT_EQ(content(std::string("text")).which(), 4);
}

TEST(Content, HasItsMembersInTheDeclaredOrder) {
    const if_expr conditional{
        {content(std::string("then"))}, {content(std::string("else"))}, "name"};
    EXPECT_EQ(support::describe({conditional}), "if(name ? 'then' : 'else')");
    const for_expr loop{{content(std::string("body"))}, "variable", "list"};
    EXPECT_EQ(support::describe({loop}), "for(variable in list ? 'body')");
    EXPECT_EQ(support::describe({replace_expr{"name"}, include_expr{"path"}}),
              "{name} include(path)");
}

TEST(Content, IsCopiedWithEverythingBelowIt) {
    auto source = std::make_unique<content_list>();
    ASSERT_TRUE(parseTemplate(
        "{% if a %}{% for b in c %}x{{ d }}{% include \"e\" %}{% endfor %}{% else %}y{% endif %}",
        *source));
    const content_list copy(*source);
    source.reset();
    EXPECT_EQ(support::describe(copy), "if(a ? for(b in c ? 'x' {d} include(e)) : 'y')");
}

TEST(Content, LeavesAnEmptyRecordWhenMoved) {
    content source = for_expr{{content(std::string("body"))}, "variable", "list"};
    const content target(std::move(source));
    EXPECT_EQ(support::describe({target}), "for(variable in list ? 'body')");
    ASSERT_EQ(source.which(), 1);
    EXPECT_EQ(support::describe({source}), "for( in  ?)");
}

TEST(DestroyNodes, EmptiesEveryList) {
    content_list nodes;
    destroyNodes(nodes);
    EXPECT_TRUE(nodes.empty());
    ASSERT_TRUE(parseTemplate(
        "a{{ b }}{% if c %}d{% else %}{% for e in f %}g{% endfor %}{% endif %}", nodes));
    destroyNodes(nodes);
    EXPECT_TRUE(nodes.empty());
}

} // namespace
} // namespace kel::Stencilor::internal
