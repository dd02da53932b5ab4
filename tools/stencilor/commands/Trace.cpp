#include <libKel/Logging.h>
#include <tools/stencilor/commands/Trace.h>
#include <tools/stencilor/system/System.h>

#include <string>

namespace stencilor {

namespace {

constexpr unsigned int deepestIndentation = 40;

std::string indentation(unsigned int depth) {
    if (depth < deepestIndentation) {
        return std::string(std::size_t{depth} * 2, ' ');
    }
    return "(" + std::to_string(depth) + " scopes) ";
}

void writeScope(const kel::LogRecord& record) {
    // The indentation of the next scope shows which ones were left; messages are printed
    // separately.
    if (record.kind == kel::LogRecord::Kind::ScopeEntered) {
        system::writeStandardError("trace: " + indentation(record.depth) +
                                   std::string(record.text) + ":" + std::to_string(record.line) +
                                   "\n");
    }
}

} // namespace

void startTrace() {
    kel::LogFactory::setSink(writeScope);
    kel::LogFactory::setPriority(kel::LoggerPriority::PRIORITY_TRACE);
}

void endTrace() {
    kel::LogFactory::setPriority(kel::LoggerPriority::PRIORITY_WARNING);
}

} // namespace stencilor
