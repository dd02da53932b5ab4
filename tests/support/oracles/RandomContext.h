#ifndef TESTS_SUPPORT_ORACLES_RANDOMCONTEXT_H
#define TESTS_SUPPORT_ORACLES_RANDOMCONTEXT_H

#include "Random.h"

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>

#include <functional>
#include <memory>
#include <string>

namespace support {

/// Makes a string of a base library of bytes.
using ToString = std::function<kel::String(Random&, const std::string&)>;

/// A root whose values have every shape that hosts can make: all kinds, classes derived from them,
/// null entries and elements, children on values of every kind, the same few keys at every level.
/// All strings differ, so that a wrong lookup is detected.
std::unique_ptr<kel::Stencilor::ContextBase> randomContext(Random& random,
                                                           const ToString& toString);

} // namespace support

#endif
