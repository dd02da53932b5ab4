#ifndef TESTS_SUPPORT_ORACLES_RANDOMTEMPLATE_H
#define TESTS_SUPPORT_ORACLES_RANDOMTEMPLATE_H

#include "Random.h"

#include <string>
#include <vector>

namespace support {

/// The intended kind of a name's value.
enum class Meaning { text, condition, list };

/// A name for a tag: one of a few that coincide with and without the prefixes of loop variables.
/// Mostly one that a random context uses for values of this kind.
std::string randomName(Random& random, Meaning meaning);

/// A key of a random context; `meaning` is the intended kind of its value.
std::string randomKey(Random& random, Meaning meaning);

Meaning randomMeaning(Random& random);

/// Bytes between tags or of a value: ASCII, other letters, parts of characters, invalid bytes. They
/// may contain a NUL.
std::string randomText(Random& random);

/// A template of at most about `size` nodes, which is usually well formed. `paths`, which may be
/// empty, are the paths that it may include.
std::string randomTemplate(Random& random, std::size_t size, const std::vector<std::string>& paths);

} // namespace support

#endif
