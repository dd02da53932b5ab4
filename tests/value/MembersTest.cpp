#include "../support/Test.h"

#include <libStencilor/Value.h>

namespace shop {

struct Maker {
    std::string name;
    std::optional<std::string> country;
};
STENCILOR_MEMBERS(Maker, name, country);

struct Row {
    std::string name;
    double price;
    bool isNew;
    Maker maker;
    std::vector<std::string> tags;
    std::vector<Maker> others;
    std::map<std::string, int> stock;
    std::optional<Maker> importer;
    std::vector<bool> bits;
    int hidden = 0;
};
STENCILOR_MEMBERS(Row, name, price, isNew, maker, tags, others, stock, importer, bits);

/// Contains rows of its own type.
struct Folder {
    std::string name;
    std::vector<Folder> folders;
};
STENCILOR_MEMBERS(Folder, name, folders);

/// Defines its own conversion.
class Money {
  public:
    explicit Money(int cents) : cents_(cents) {}
    int cents() const { return cents_; }

  private:
    int cents_;
};
kel::Stencilor::Value toValue(const Money& money) {
    return std::to_string(money.cents() / 100) + " EUR";
}

/// A range with its own conversion, which does not become a list.
struct Names : std::vector<std::string> {
    using std::vector<std::string>::vector;
};
kel::Stencilor::Value toValue(const Names& names) {
    return names.size();
}

enum class Color { Red };
kel::Stencilor::Value toValue(Color) {
    return "red";
}

struct One {
    int only;
};
STENCILOR_MEMBERS(One, only);

// clang-format off
struct Sixtyfour {
    int a1, a2, a3, a4, a5, a6, a7, a8, b1, b2, b3, b4, b5, b6, b7, b8;
    int c1, c2, c3, c4, c5, c6, c7, c8, d1, d2, d3, d4, d5, d6, d7, d8;
    int e1, e2, e3, e4, e5, e6, e7, e8, f1, f2, f3, f4, f5, f6, f7, f8;
    int g1, g2, g3, g4, g5, g6, g7, g8, h1, h2, h3, h4, h5, h6, h7, h8;
};
STENCILOR_MEMBERS(Sixtyfour,
    a1, a2, a3, a4, a5, a6, a7, a8, b1, b2, b3, b4, b5, b6, b7, b8,
    c1, c2, c3, c4, c5, c6, c7, c8, d1, d2, d3, d4, d5, d6, d7, d8,
    e1, e2, e3, e4, e5, e6, e7, e8, f1, f2, f3, f4, f5, f6, f7, f8,
    g1, g2, g3, g4, g5, g6, g7, g8, h1, h2, h3, h4, h5, h6, h7, h8);
// clang-format on

} // namespace shop

namespace kel::Stencilor {
namespace {

TEST(Members, MakeAStructADictionary) {
    const shop::Row row = {.name = "Tea",
                           .price = 4.5,
                           .isNew = true,
                           .maker = {"A", "India"},
                           .tags = {"green", "loose"},
                           .others = {{"B", std::nullopt}},
                           .stock = {{"here", 3}},
                           .importer = std::nullopt,
                           .bits = {true}};
    const Value maker{{"name", "A"}, {"country", "India"}};
    EXPECT_EQ(Value(row), (Value{{"name", "Tea"},
                                 {"price", 4.5},
                                 {"isNew", true},
                                 {"maker", maker},
                                 {"tags", Value::list({"green", "loose"})},
                                 {"others", Value::list({{{"name", "B"}, {"country", nullptr}}})},
                                 {"stock", {{"here", 3}}},
                                 {"importer", nullptr},
                                 {"bits", Value::list({true})}}));
}

TEST(Members, WorkInContainersAndBraces) {
    const std::vector<shop::One> rows = {{1}, {2}};
    const Value expected = Value::list({{{"only", 1}}, {{"only", 2}}});
    EXPECT_EQ(Value(rows), expected);
    EXPECT_EQ(Value::list(rows), expected);
    EXPECT_EQ((Value{{"rows", rows}}), (Value{{"rows", expected}}));
    EXPECT_EQ(Value(std::map<std::string, shop::One>{{"a", {1}}}), (Value{{"a", {{"only", 1}}}}));
    EXPECT_EQ(Value(std::make_optional(shop::One{1})), (Value{{"only", 1}}));
}

TEST(Members, MayHoldTheirOwnType) {
    const shop::Folder folder = {"root", {{"a", {}}, {"b", {{"c", {}}}}}};
    EXPECT_EQ(Value(folder).find("folders")->at(1).find("folders")->at(0).find("name")->text(),
              "c");
}

TEST(Members, NumberUpToSixtyFour) {
    shop::Sixtyfour row{};
    row.a1 = 1;
    row.h8 = 64;
    const Value value(row);
    EXPECT_EQ(value.size(), 64u);
    EXPECT_EQ(value.find("a1")->text(), "1");
    EXPECT_EQ(value.find("h8")->text(), "64");
}

TEST(Members, WorkForLocalTypes) {
    struct Local {
        int a;
    };
    static_assert(!std::is_constructible_v<Value, Local>);
}

TEST(OwnFunctions, ConvertATypeLikeMembers) {
    EXPECT_EQ(Value(shop::Money(500)), Value("5 EUR"));
    EXPECT_EQ(Value(std::vector<shop::Money>{shop::Money(100)}), Value::list({"1 EUR"}));
    EXPECT_EQ((Value{{"price", shop::Money(200)}}), (Value{{"price", "2 EUR"}}));
    EXPECT_EQ(Value(shop::Names{"a", "b"}), Value(2));
    EXPECT_EQ(Value(shop::Color::Red), Value("red"));
}

} // namespace
} // namespace kel::Stencilor
