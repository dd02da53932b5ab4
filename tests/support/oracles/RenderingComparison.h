#ifndef TESTS_SUPPORT_ORACLES_RENDERINGCOMPARISON_H
#define TESTS_SUPPORT_ORACLES_RENDERINGCOMPARISON_H

#include "Random.h"

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// The files of a few cases by path; an empty value is an existing file that cannot be loaded.
using Files = std::map<std::string, std::optional<std::string>>;

/// The interface of the base library for the comparison.
class ComparedHost {
  public:
    ComparedHost() = default;
    ComparedHost(const ComparedHost&) = delete;
    ComparedHost& operator=(const ComparedHost&) = delete;
    virtual ~ComparedHost() = default;

    virtual void setFiles(const Files& files) = 0;
    virtual void setPriorities(std::int32_t global, std::int32_t threshold,
                               std::int32_t effective) = 0;

    /// A template or a value. It only has to be reproducible.
    virtual kel::String toString(Random& random, const std::string& bytes) = 0;
    virtual std::string toBytes(const kel::String& string) = 0;

    /// The records since the last call, which must be the same for both.
    virtual std::vector<std::string> takeRecords() = 0;

    /// Compares another way to render with the result of `buildOutput`: its output, and its
    /// messages if they are known. Does nothing if there is none.
    virtual void compareFurther(const kel::String& input,
                                const kel::Stencilor::ContextBase& context,
                                const std::string& output,
                                const std::optional<std::string>& errors);

    /// Makes the call after this number throw `std::bad_alloc`, if the library supports it; if
    /// empty, none.
    virtual void setCallsUntilFailure(std::optional<std::uint64_t>) {}
};

/// Renders random templates with random contexts and files, by the engine and by the second
/// renderer, and expects the same output, messages and records, and the same exceptions.
///
/// `STENCILOR_CASES` in the environment is the number of cases instead of `count`, and
/// `STENCILOR_SEED` the number of the first one. A failure reports the numbers that reproduce it.
void compareRenderings(ComparedHost& host, std::uint64_t count);

} // namespace support

#endif
