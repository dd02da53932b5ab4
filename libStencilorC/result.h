#ifndef LIBSTENCILORC_RESULT_H
#define LIBSTENCILORC_RESULT_H

#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <memory>
#include <utility>

namespace kel::Stencilor::internal {

/// Makes a result of what a render returned, or of a callback's stop.
std::unique_ptr<stencilor_result> makeResult(RenderResult rendered);
std::unique_ptr<stencilor_result> makeResult(call_stop stop);

/// The options of one call, which may be null. `stopCode` receives what the poll function returns.
class call_options {
  public:
    call_options(const stencilor_options* options, int& stopCode);
    const RenderOptions& get() const { return *options_; }

  private:
    std::optional<stencilor_options> defaults_{};
    std::optional<RenderOptions> polled_{};
    const RenderOptions* options_;
};

/// Renders by a function of the options, and stores the result.
template <typename Render>
int renderToResult(const stencilor_options* options, stencilor_result** result,
                   Render render) noexcept {
    return guarded([&] {
        if (result != nullptr) {
            *result = nullptr;
        }
        std::unique_ptr<stencilor_result> made;
        try {
            int stopCode = 0;
            made = makeResult(render(call_options(options, stopCode).get()));
            made->stopCode = stopCode;
        } catch (const call_stop& stop) {
            made = makeResult(stop);
        }
        const int status = made->status;
        if (result != nullptr) {
            *result = made.release();
        }
        return status;
    });
}

} // namespace kel::Stencilor::internal

#endif
