#include "../support/Test.h"

#include <libKel/RootedPath.h>

namespace kel {
namespace {

TEST(PortableRelativePath, IsOneThatMeansTheSameFileOnEverySystem) {
    const char* const paths[] = {
        "a",      "a.txt",   "p/head.txt", "./a",   "../a",     "a/../b", "a/./b",
        "a//b",   "a/",      "..",         ".",     ".hidden",  "a.b.c",  "a b",
        " a",     "\u00E4",  "CONSOLE",    "CO",    "NULL",     "NUL1",   "COM",
        "COM10",  "COMA",    "LPT",        "LPT12", "AUX1.txt", "aCON",   "CONIN",
        "CONOUT", "txt.CON", "COM\u2074",  "COM!",  "C~N"};
    for (const char* const path : paths) {
        EXPECT_TRUE(isPortableRelativePath(path)) << path;
    }
}

TEST(PortableRelativePath, IsRejectedIfAnySystemInterpretsItDifferently) {
    const struct {
        const char* name;
        std::string path;
    } cases[] = {
        {"nothing", ""},
        {"an absolute path", "/etc/passwd"},
        {"two slashes", "//server/share"},
        {"a backslash", "a\\b"},
        {"a leading backslash", "\\a"},
        {"going up by backslash", "..\\a"},
        {"going up by backslash further in", "a/..\\..\\b"},
        {"a share", "\\\\server\\share\\a"},
        {"a device path", "\\\\.\\NUL"},
        {"a drive", "C:\\a"},
        {"a drive with a slash", "C:/a"},
        {"a path relative to a drive", "c:a"},
        {"a second stream of a file", "a.txt:stream"},
        {"a colon in a later part", "a/b:c"},
        {"an asterisk", "a*"},
        {"a question mark", "a?"},
        {"a quotation mark", "a\"b"},
        {"a less-than sign", "a<b"},
        {"a greater-than sign", "a>b"},
        {"a bar", "a|b"},
        {"a NUL byte", std::string("a\0b", 3)},
        {"a line break", "a\nb"},
        {"the last control character", "a\x1F"},
        {"a dot at the end", "a."},
        {"dots at the end", "a/b..."},
        {"three dots", ".../a"},
        {"a space at the end", "a "},
        {"a space at the end of a folder", "a /b"},
        {"a dot and a space", ". "},
        {"two dots and a space", ".. /a"},
    };
    for (const auto& [name, path] : cases) {
        EXPECT_FALSE(isPortableRelativePath(path)) << name;
    }
}

TEST(PortableRelativePath, IsNeverADevice) {
    const char* const devices[] = {
        "CON",          "PRN",         "AUX",        "NUL",       "CONIN$",        "CONOUT$",
        "COM0",         "COM1",        "COM9",       "LPT0",      "LPT1",          "LPT9",
        "COM\u00B9",    "COM\u00B2",   "COM\u00B3",  "LPT\u00B9", "LPT\u00B2",     "LPT\u00B3",
        "con",          "Con",         "nUl",        "aux",       "com1",          "Lpt\u00B2",
        "conin$",       "NUL.txt",     "nul.tar.gz", "con.",      "COM1.log",      "NUL .txt",
        "AUX   .a.txt", "CONOUT$.txt", "lpt5.x",     "PRN.txt.",  "com\u00B3.txt",
    };
    for (const std::string device : devices) {
        EXPECT_FALSE(isPortableRelativePath(device)) << device;
        EXPECT_FALSE(isPortableRelativePath("a/" + device)) << device;
        EXPECT_FALSE(isPortableRelativePath(device + "/a")) << device;
        EXPECT_FALSE(isPortableRelativePath("../" + device + "/../a")) << device;
    }
}

TEST(PathOnWindows, IsAsWrittenIfNoNameIsChanged) {
    for (const char* const path :
         {"",         "/",         "a",       "a.txt",     ".",           "..",
          "./a",      "../a/../b", ".hidden", "a b/c.d/e", "..a",         "/a/",
          "C:\\a\\b", "C:a",       "C:",      "C:..\\a",   "\\\\s\\p\\a", "\\\\?\\C:\\a",
          "a:b",      "console",   "COM10",   "nul1.txt",  "a/.nul"}) {
        EXPECT_TRUE(isAsWrittenOnWindows(path)) << path;
    }
    for (const char* const path :
         {"a.",      "a..",    "a ",       "a. ",        "a.txt. ",   "...",           ". ",
          ".. /a",   "a./b",   "a\\b.\\c", "C:a.",       "C:\\a ",    "\\\\?\\C:\\a.", "NUL",
          "nul.txt", "a\\CON", "C:NUL",    "C:\\COM1.a", "LPT\u00B9", "NUL:",          "aux :"}) {
        EXPECT_FALSE(isAsWrittenOnWindows(path)) << path;
    }
}

} // namespace
} // namespace kel
