#ifndef TESTS_SUPPORT_ORACLES_RANDOMJSON_H
#define TESTS_SUPPORT_ORACLES_RANDOMJSON_H

#include "Random.h"

#include <string>

namespace support {

/// A text that JSON allows, but that a name may occur twice in an object.
std::string randomJson(Random& random);

/// `text` with something put in, left out, replaced or repeated, or cut off.
std::string mutatedJson(Random& random, std::string text);

} // namespace support

#endif
