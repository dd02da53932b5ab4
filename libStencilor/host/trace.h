#ifndef LIBSTENCILOR_HOST_TRACE_H
#define LIBSTENCILOR_HOST_TRACE_H

#include <libKel/Logging.h>
#include <libKel/String.h>

#include <cstdint>

namespace kel::Stencilor::internal {

/// A traced place. The names and lines are fixed, because tools that read logs depend on them.
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

/// The file name of all trace points.
inline constexpr const char* traceFile = "libStencilor/render/content_visit.cpp";

/// Traces are written unless a priority is above this.
inline constexpr std::int32_t tracePriority = 1;

/// The library's logger, or null if its own threshold excludes traces. Creates the logger on first
/// use.
Logger* loggerForTraces();

/// Traces the scope of its lifetime. If tracing is off, it only tests the global priority.
class trace_scope {
  public:
    /// True if a scope that begins now may be traced.
    static bool isEnabled() { return LogFactory::getPriority() <= tracePriority; }

    explicit trace_scope(const trace_point& point)
        : trace_(isEnabled() ? loggerForTraces() : nullptr, point.function, traceFile, point.line) {
    }

  private:
    TraceLogger trace_;
};

/// Logs the messages of one rendering, if there are any and no priority excludes them.
void logErrors(const String& errors);

} // namespace kel::Stencilor::internal

#endif
