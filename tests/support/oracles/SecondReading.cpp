#include "SecondReading.h"

#include <boost/fusion/include/adapt_struct.hpp>
#include <boost/spirit/include/qi.hpp>

// The binding order, which differs from the order of the members.
BOOST_FUSION_ADAPT_STRUCT(kel::Stencilor::internal::if_expr, name, then_list, else_list)
BOOST_FUSION_ADAPT_STRUCT(kel::Stencilor::internal::for_expr, variable, list_name, body)
BOOST_FUSION_ADAPT_STRUCT(kel::Stencilor::internal::replace_expr, name)
BOOST_FUSION_ADAPT_STRUCT(kel::Stencilor::internal::include_expr, path)

namespace support {

namespace {

using namespace kel::Stencilor::internal;
namespace qi = boost::spirit::qi;
namespace encoding = boost::spirit::standard;

using Iterator = std::string::const_iterator;
using Blanks = qi::rule<Iterator>; // Spirit's own rule for spaces rejects bytes over 127

template <typename... Attribute>
using Rule = qi::rule<Iterator, Blanks, Attribute...>;

struct Grammar : qi::grammar<Iterator, Blanks, content_list()> {
    Grammar() : Grammar::base_type(start) {
        start = qi::no_skip[qi::eps] >> *node >> qi::eoi;
        node = text | statement;
        statement = conditional | loop | substitution | inclusion;
        conditional = qi::lit("{%") >> "if" >> identifier >> "%}" >> *node >>
                      -(qi::lit("{%") >> "else" >> "%}" >> *node) >> "{%" >> "endif" >> "%}";
        loop = qi::lit("{%") >> "for" >> identifier >> "in" >> identifier >> "%}" >> *node >>
               "{%" >> "endfor" >> "%}";
        substitution = qi::lit("{{") >> identifier >> "}}";
        inclusion = qi::lit("{%") >> "include" >> '"' >> identifier >> '"' >> "%}";
        identifier = qi::lexeme[encoding::char_("a-zA-Z_") >> *encoding::char_("a-zA-Z_0-9./")];
        text = qi::no_skip[+(encoding::char_ - "{%" - "{{")];
    }

    Rule<content_list()> start;
    Rule<content()> node;
    Rule<content()> statement;
    Rule<if_expr()> conditional;
    Rule<for_expr()> loop;
    Rule<replace_expr()> substitution;
    Rule<include_expr()> inclusion;
    Rule<std::string()> identifier;
    Rule<std::string()> text;
};

} // namespace

bool readOnceMore(const std::string& text, content_list& nodes) {
    static const Grammar grammar;
    static const Blanks blanks = encoding::char_(" \t");
    Iterator begin = text.begin();
    return qi::phrase_parse(begin, text.end(), grammar, blanks, nodes);
}

} // namespace support
