#ifndef TESTS_SUPPORT_ORACLES_SECONDRENDERER_H
#define TESTS_SUPPORT_ORACLES_SECONDRENDERER_H

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>

namespace support {

/// A second renderer, as simple as possible: every visit works on copies of the scopes and the
/// prefixes, every operation returns two strings, and blocks are calls. It is slow, recursive,
/// and independent of the engine except for the tree and the values. It behaves like `buildOutput`,
/// including log records, and works with any base library that the engine works with.
kel::String buildOutputOnceMore(const kel::String& input,
                                const kel::Stencilor::ContextBase& context, kel::String& errors);
kel::String buildOutputOnceMore(const kel::String& input,
                                const kel::Stencilor::ContextBase& context);

} // namespace support

#endif
