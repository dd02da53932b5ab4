#ifndef TOOLS_STENCILOR_LSP_DIAGNOSTICS_H
#define TOOLS_STENCILOR_LSP_DIAGNOSTICS_H

#include <tools/stencilor/lsp/Checks.h>
#include <tools/stencilor/lsp/Client.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace stencilor::lsp {

/// The URI of a file or a document.
std::string uriOf(const Documents& documents, const std::string& name);

/// Sends findings, and remembers what was sent.
///
/// Ownership: borrows its arguments.
class DiagnosticsPublisher {
  public:
    using Notify = std::function<void(const char* method, const std::string& params)>;

    static constexpr std::size_t mostFindings = 1000; ///< the maximum per file

    DiagnosticsPublisher(const Documents& documents, const Checks& checks, const Client& client,
                         Notify notify)
        : documents_(documents), checks_(checks), client_(client), notify_(std::move(notify)) {}

    /// Sends the findings in these files, and those in context files.
    void publish(std::set<std::string> names);

  private:
    struct Sent {
        std::string uri;
        std::string diagnostics; // JSON
    };

    Json describe(const std::string& name) const;
    void send(const std::string& name, const Json& diagnostics);
    void notify(const Sent& sent, const Document* document);

    const Documents& documents_;
    const Checks& checks_;
    const Client& client_;
    Notify notify_;
    std::map<std::string, Sent> sent_;   // by name, where there are any
    std::set<std::string> contextNames_; // that had findings
};

} // namespace stencilor::lsp

#endif
