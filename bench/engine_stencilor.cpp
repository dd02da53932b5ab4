#include "context.h"
#include "engines.h"

#include <libStencilor/Stencilor.h>

namespace bench {

using namespace kel::Stencilor;

renderer stencilorRenderer(const std::string& templateText, const object& data) {
    struct state {
        kel::String text;
        std::unique_ptr<ContextDictionary> context;
        kel::String output;
    };
    auto shared = std::make_shared<state>(state{templateText, toContext(data), {}});
    return {[shared] {
                kel::String errors;
                shared->output = buildOutput(shared->text, *shared->context, errors);
                return std::size_t{shared->output.size()};
            },
            [shared] { return shared->output.str(); }};
}

std::function<std::size_t()> stencilorForThreads(const std::string& templateText,
                                                 const object& data) {
    struct state {
        kel::String text;
        std::unique_ptr<ContextDictionary> context;
    };
    const auto shared = std::make_shared<const state>(state{templateText, toContext(data)});
    return [shared] {
        kel::String errors;
        return std::size_t{buildOutput(shared->text, *shared->context, errors).size()};
    };
}

} // namespace bench
