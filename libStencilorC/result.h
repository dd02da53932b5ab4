#ifndef LIBSTENCILORC_RESULT_H
#define LIBSTENCILORC_RESULT_H

#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <memory>
#include <utility>

namespace kel::Stencilor::internal {

/// Creates the messages of a render's result.
void describeMessages(stencilor_result& result);

/// The options of one call; null means the defaults. `stopCode` receives what the poll function
/// returns.
class call_options {
  public:
    call_options(const stencilor_options* options, int& stopCode);
    const RenderOptions& get() const { return *options_; }

  private:
    std::optional<stencilor_options> defaults_{};
    std::optional<RenderOptions> polled_{};
    const RenderOptions* options_;
};

/// Renders with a function of the options, and stores the result.
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
            // In place: moving a result would cost a good part of rendering a small page.
            made.reset(new stencilor_result{render(call_options(options, stopCode).get())});
            made->stopCode = stopCode;
            if (!made->rendered.messages.empty()) {
                describeMessages(*made);
            }
        } catch (const call_stop& stop) {
            made.reset(new stencilor_result{{.status = RenderStatus::Stopped}, stop.code});
        }
        const int status = stencilor_result_status(made.get());
        if (result != nullptr) {
            *result = made.release();
        }
        return status;
    });
}

} // namespace kel::Stencilor::internal

#endif
