#ifndef LIBSTENCILORC_RESULT_H
#define LIBSTENCILORC_RESULT_H

#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <memory>
#include <utility>

namespace kel::Stencilor::internal {

/// The `stencilor_status` of a render.
int statusOf(RenderStatus status);

/// Creates the messages of a render's result.
void describeMessages(stencilor_result& result);

/// The options of one call; null means the defaults. `stopCode` receives what the poll function
/// returns.
class call_options {
  public:
    call_options(const stencilor_options* options, int& stopCode) {
        if (options != nullptr && options->poll == nullptr) {
            options_ = &options->options;
        } else {
            complete(options, stopCode);
        }
    }
    const RenderOptions& get() const { return *options_; }

  private:
    void complete(const stencilor_options* options, int& stopCode);

    std::optional<stencilor_options> defaults_{};
    std::optional<RenderOptions> polled_{};
    const RenderOptions* options_;
};

/// Calls a render function with the options, and stores the result.
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
            const call_options how(options, stopCode);
            made.reset(new stencilor_result([&] { return render(how.get()); }));
            made->stopCode = stopCode;
            if (!made->rendered.messages.empty()) {
                describeMessages(*made);
            }
        } catch (const call_stop& stop) {
            made.reset(
                new stencilor_result([] { return RenderResult{.status = RenderStatus::Stopped}; }));
            made->stopCode = stop.code;
        }
        const int status = statusOf(made->rendered.status);
        if (result != nullptr) {
            *result = made.release();
        }
        return status;
    });
}

} // namespace kel::Stencilor::internal

#endif
