#include <libKel/Logging.h>
#include <libStencilor/Stencilor.h>

#include <iostream>
#include <mutex>
#include <string>
#include <vector>

// A host that takes what the libraries log into a journal of its own. Only `buildOutput` logs
// messages.

using namespace kel::Stencilor;

namespace {

class Journal {
  public:
    /// A record is valid during the call only, and several threads may call at once.
    void add(const kel::LogRecord& record) {
        if (record.kind != kel::LogRecord::Kind::Message) {
            return; // scopes, which are recorded from PRIORITY_TRACE down
        }
        const std::lock_guard lock(mutex_);
        entries_.push_back(std::string(record.category) + ": " + std::string(record.text));
    }

    void print() const {
        for (const std::string& entry : entries_) {
            std::cout << entry;
        }
    }

  private:
    std::mutex mutex_;
    std::vector<std::string> entries_;
};

} // namespace

int main() {
    Journal journal;
    kel::LogFactory::setSink([&journal](const kel::LogRecord& record) { journal.add(record); });
    kel::LogFactory::setPriority(kel::LoggerPriority::PRIORITY_INFO);

    ContextDictionary context;
    context.insert("name", ContextFactory::buildString("Ada"));
    std::cout << buildOutput("{{ title }} {{ name }}\n", context);
    buildOutput("{% for guest in guests %}{% endfor %}", context);

    kel::LogFactory::setSink({}); // the journal will not be there much longer
    journal.print();
}
