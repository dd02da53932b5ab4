#include "../support/Test.h"

#include <libStencilorAnalysis/text/Suggestion.h>

namespace kel::Stencilor::Analysis {
namespace {

TEST(KnownWords, AreFoundForMisspelledOnes) {
    const struct {
        const char* name;
        std::string word;
        std::vector<std::string> known;
        std::string found;
    } cases[] = {
        {"two swapped letters", "tilte", {"size", "title"}, "title"},
        {"two swapped letters at the end", "chekc", {"check"}, "check"},
        {"two swapped letters that are not adjacent", "costumer", {"customer"}, "customer"},
        {"a missing letter", "tile", {"title"}, "title"},
        {"a missing first letter", "itle", {"title"}, "title"},
        {"a doubled letter", "tittle", {"title"}, "title"},
        {"an extra letter", "titles.", {"titles"}, "titles"},
        {"a wrong letter", "tit1e", {"titles"}, ""},
        {"a letter instead of a digit", "tirle", {"title"}, "title"},
        {"different case", "TITLE", {"title"}, "title"},
        {"parts joined differently", "userName", {"user_name"}, "user_name"},
        {"a missing dot", "username", {"user.name"}, "user.name"},
        {"the singular", "item", {"items"}, "items"},
        {"the plural", "items", {"item"}, "item"},
        {"a plural in -es", "boxes", {"box"}, "box"},
        {"the singular of a plural in -ies", "entry", {"entries"}, "entries"},
        {"the plural of a short word", "xs", {"x"}, "x"},
        {"an option", "--stirct", {"--strict", "--root"}, "--strict"},
        {"the nearest of several", "nmae", {"names", "name", "nmea"}, "name"},
        {"the first of several equally near words", "bate", {"date", "rate"}, "date"},
        {"a known word", "name", {"Name", "name"}, ""},
        {"another word", "price", {"title"}, ""},
        {"a short word", "a", {"b", "ab"}, ""},
        {"another number", "item1", {"item2"}, ""},
        {"no words", "name", {}, ""},
        {"a very long word in different case",
         std::string(1000, 'a') + "B",
         {std::string(1000, 'a') + "b"},
         std::string(1000, 'a') + "b"},
    };
    for (const auto& [name, word, known, found] : cases) {
        EXPECT_EQ(KnownWords(known).findNearest(word), found) << name;
        std::vector<std::string> more = known; // too many to compare all of them
        for (char letter = 'A'; letter <= 'Z'; ++letter) {
            more.push_back(std::string(40, letter));
            more.push_back(std::string(50, letter));
        }
        EXPECT_EQ(KnownWords(more).findNearest(word), found) << name;
    }
    EXPECT_EQ(didYouMean("title"), "; did you mean \"title\"?");
    EXPECT_EQ(didYouMean(""), "");
}

} // namespace
} // namespace kel::Stencilor::Analysis
