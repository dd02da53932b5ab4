#ifndef LIBSTENCILOR_HOST_TRACE_H
#define LIBSTENCILOR_HOST_TRACE_H

#include <libKel/Logging.h>
#include <libKel/String.h>

#include <cstdint>

namespace kel::Stencilor::internal {

/// A place that is traced. The names and lines are fixed: tools that read logs know them.
struct trace_point {
    const char* function;
    int line;
};

namespace trace_points {
inline constexpr trace_point visitString{"content_visit::string", 120};
inline constexpr trace_point visitIf{"content_visit::if_expr", 126};
inline constexpr trace_point visitFor{"content_visit::for_expr", 151};
inline constexpr trace_point visitReplace{"content_visit::replace_expr", 184};
inline constexpr trace_point visitInclude{"content_visit::include_expr", 205};
inline constexpr trace_point applyVisitor{"applyVisitor", 230};
inline constexpr trace_point renderIncluded{"buildOutput", 251};
inline constexpr trace_point buildOutput{"buildOutput", 408};
} // namespace trace_points

/// The file that all trace points name.
inline constexpr const char* traceFile = "libStencilor/render/content_visit.cpp";

/// Traces are written while no priority is above this.
inline constexpr std::int32_t tracePriority = 1;

/// The library's logger, or null where its own threshold keeps traces out. Makes the logger on
/// first use.
Logger* loggerForTraces();

/// Traces the scope that it lives in. With tracing off it costs the test of the global priority.
class trace_scope {
  public:
    /// Whether a scope that begins now may be traced.
    static bool isEnabled() { return LogFactory::getPriority() <= tracePriority; }

    explicit trace_scope(const trace_point& point)
        : trace_(isEnabled() ? loggerForTraces() : nullptr, point.function, traceFile, point.line) {
    }

  private:
    TraceLogger trace_;
};

/// Logs the messages of one rendering, where there are any and no priority keeps them out.
void logErrors(const String& errors);

} // namespace kel::Stencilor::internal

#endif
