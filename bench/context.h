#ifndef BENCH_CONTEXT_H
#define BENCH_CONTEXT_H

#include "model.h"

#include <libStencilor/Stencilor.h>
#include <libStencilor/Value.h>

#include <memory>

namespace bench {

/// The data of a workload as a context of this engine, built from the classic classes.
std::unique_ptr<kel::Stencilor::ContextDictionary> toContext(const object& from);

/// The same as a value.
kel::Stencilor::Value toValue(const object& from);

} // namespace bench

#endif
