#ifndef TESTS_SUPPORT_ORACLES_RANDOMJSON_H
#define TESTS_SUPPORT_ORACLES_RANDOMJSON_H

#include "Random.h"

#include <string>

namespace support {

/// A valid JSON text, except that names may be duplicate in an object.
std::string randomJson(Random& random);

/// `text` with a part inserted, removed, replaced or repeated, or truncated.
std::string mutatedJson(Random& random, std::string text);

} // namespace support

#endif
