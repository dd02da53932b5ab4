#ifndef TESTS_SUPPORT_ORACLES_JSONCOMPARISON_H
#define TESTS_SUPPORT_ORACLES_JSONCOMPARISON_H

#include <string>
#include <string_view>

namespace support {

/// The results of the JSON reader and of nlohmann-json for the same text.
struct JsonComparison {
    bool accepted;          ///< by the reader
    std::string difference; ///< empty if they agree
};

/// Compares acceptance, all values and names in order, and the ranges that the reader reports. Only
/// the reader rejects text with more than 512 levels, duplicate names in an object, and NUL bytes
/// after the end; only nlohmann-json rejects numbers that exceed a `double`.
JsonComparison compareJsonReaders(std::string_view text);

} // namespace support

#endif
