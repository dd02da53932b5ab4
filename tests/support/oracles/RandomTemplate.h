#ifndef TESTS_SUPPORT_ORACLES_RANDOMTEMPLATE_H
#define TESTS_SUPPORT_ORACLES_RANDOMTEMPLATE_H

#include "Random.h"

#include <string>
#include <vector>

namespace support {

/// What a name is meant to stand for.
enum class Meaning { text, truth, list };

/// A name that stands in a tag: one of a few, which are the same with and without the loop
/// variables in front of them. Mostly one that a random context has for values of that kind.
std::string randomName(Random& random, Meaning meaning);

/// A key of a random context; `meaning` is what its value is meant to be.
std::string randomKey(Random& random, Meaning meaning);

Meaning randomMeaning(Random& random);

/// Bytes between tags or of a value: ASCII, other letters, parts of characters, bytes that begin
/// none. It may hold a NUL.
std::string randomText(Random& random);

/// A template of at most about `size` nodes. Mostly well formed; some have a fault.
/// `paths` are what it may include, and may be empty.
std::string randomTemplate(Random& random, std::size_t size, const std::vector<std::string>& paths);

} // namespace support

#endif
