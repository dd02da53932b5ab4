#ifndef TESTS_SUPPORT_ORACLES_JSONCOMPARISON_H
#define TESTS_SUPPORT_ORACLES_JSONCOMPARISON_H

#include <string>
#include <string_view>

namespace support {

/// What the JSON reader and the parser of nlohmann-json make of the same text.
struct JsonComparison {
    bool accepted;          ///< by the reader
    std::string difference; ///< empty where they agree
};

/// Compares what is accepted, all values and names in their order, and that each range that the
/// reader reports holds what it reports. The reader alone refuses texts nested more than 512
/// levels, names that occur twice in an object, and NUL bytes after the end; nlohmann-json alone
/// refuses numbers that a `double` cannot hold.
JsonComparison compareJsonReaders(std::string_view text);

} // namespace support

#endif
