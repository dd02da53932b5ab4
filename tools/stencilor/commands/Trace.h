#ifndef TOOLS_STENCILOR_COMMANDS_TRACE_H
#define TOOLS_STENCILOR_COMMANDS_TRACE_H

namespace stencilor {

/// Until the trace ends, each scope that the engine enters is written to the standard error stream,
/// as `trace: NAME:LINE` with two spaces before the name for each scope around it. From 40 scopes
/// on, their number replaces the spaces, to keep lines short.
void startTrace();
void endTrace();

} // namespace stencilor

#endif
