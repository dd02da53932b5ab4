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

/// Converts a finding in a document to the protocol.
Json describeFinding(const kel::Stencilor::Analysis::Finding& finding, const IndexedText& text,
                     const Documents& documents, const Client& client);

/// Sends findings, and remembers what was sent.
///
/// Ownership: borrows its arguments.
class DiagnosticsPublisher {
  public:
    using Notify = std::function<void(const char* method, Json params)>;

    static constexpr std::size_t mostFindings = 1000; ///< the maximum per file

    DiagnosticsPublisher(const Documents& documents, const Checks& checks, const Client& client,
                         Notify notify)
        : documents_(documents), checks_(checks), client_(client), notify_(std::move(notify)) {}

    /// Sends the findings in these files, and those in context files.
    void publish(std::set<std::string> names);

  private:
    Json describe(const std::string& name) const;
    void send(const std::string& name, Json diagnostics);

    const Documents& documents_;
    const Checks& checks_;
    const Client& client_;
    Notify notify_;
    std::map<std::string, Json> sent_;   // by URI, where there are any
    std::set<std::string> contextNames_; // that had findings
};

} // namespace stencilor::lsp

#endif
