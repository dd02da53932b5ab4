#ifndef TESTS_SUPPORT_ORACLES_SECONDRENDERER_H
#define TESTS_SUPPORT_ORACLES_SECONDRENDERER_H

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>

namespace support {

/// Rendering once more, as plainly as it can be written: every visit works on copies of the scopes
/// and of the prefixes, every operation returns a pair of texts, blocks are calls. Slow, recursive,
/// and independent of the engine, of which it knows the tree and the values alone.
/// As `buildOutput`, log records included; it runs on any base library that the engine runs on.
kel::String buildOutputOnceMore(const kel::String& input,
                                const kel::Stencilor::ContextBase& context, kel::String& errors);
kel::String buildOutputOnceMore(const kel::String& input,
                                const kel::Stencilor::ContextBase& context);

} // namespace support

#endif
