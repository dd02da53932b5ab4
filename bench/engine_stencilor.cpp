#include "context.h"
#include "engines.h"

#include <libStencilor/Template.h>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace bench {

using namespace kel::Stencilor;

namespace {

page ours(const workload& work) {
    return translated(work.text, language::stencilor, work.escaped);
}

/// A template that is parsed in advance, or cached by `FileTemplates`, with its data.
class prepared {
  public:
    prepared(const workload& work, std::shared_ptr<const ContextDictionary> context)
        : parsed_(ours(work).text), context_(std::move(context)) {
        page own = ours(work);
        if (work.inFiles) {
            path_ = work.name + ".html";
            own.included.emplace(path_.str(), own.text);
            writeFiles(".", own);
            source_ = std::make_unique<FileTemplates>(".");
        } else {
            auto memory = std::make_unique<MemoryTemplates>();
            for (const auto& [path, text] : own.included) {
                memory->add(path, text);
            }
            source_ = std::move(memory);
        }
        options_.source = source_.get();
        options_.escape = work.escaped ? Escape::html() : Escape::none();
    }

    RenderResult render() const {
        return path_.empty() ? parsed_.render(*context_, options_)
                             : renderFile(path_, *context_, options_);
    }

    RenderResult renderTo(const std::function<void(std::string_view)>& write) const {
        return parsed_.renderTo(*context_, write, options_);
    }

  private:
    Template parsed_;
    std::shared_ptr<const ContextDictionary> context_;
    std::unique_ptr<TemplateSource> source_;
    RenderOptions options_;
    kel::String path_; // empty unless the template is in a file
};

} // namespace

void writeFiles(const std::string& directory, const page& from) {
    std::filesystem::create_directories(directory);
    for (const auto& [name, text] : from.included) {
        const std::filesystem::path path = std::filesystem::path(directory) / name;
        std::ofstream(path, std::ios::binary) << text;
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() -
                                                   std::chrono::hours(1));
    }
}

renderer buildOutputRenderer(const workload& work) {
    struct state {
        kel::String text;
        std::unique_ptr<ContextDictionary> context;
        kel::String output;
    };
    const page own = ours(work);
    writeFiles(".", own);
    auto shared = std::make_shared<state>(state{own.text, toContext(work.data), {}});
    return {[shared] {
                kel::String errors;
                shared->output = buildOutput(shared->text, *shared->context, errors);
                return std::size_t{shared->output.size()};
            },
            [shared] { return shared->output.str(); }};
}

renderer templateRenderer(const workload& work) {
    const auto shared = std::make_shared<prepared>(work, toContext(work.data));
    const auto output = std::make_shared<kel::String>();
    return {[shared, output] {
                *output = shared->render().text;
                return std::size_t{output->size()};
            },
            [output] { return output->str(); }};
}

renderer renderToRenderer(const workload& work) {
    const auto shared = std::make_shared<prepared>(work, toContext(work.data));
    return {[shared] {
                std::size_t size = 0;
                shared->renderTo([&size](std::string_view piece) { size += piece.size(); });
                return size;
            },
            [shared] {
                std::string text;
                shared->renderTo([&text](std::string_view piece) { text += piece; });
                return text;
            }};
}

std::function<std::size_t()> contextOfValue(const workload& work) {
    return [data = toValue(work.data)] {
        const Context made(data);
        const ContextBase& root = made;
        return reinterpret_cast<std::size_t>(&root);
    };
}

std::function<std::size_t()> contextByHand(const workload& work) {
    return [data = work.data] { return reinterpret_cast<std::size_t>(toContext(data).get()); };
}

std::shared_ptr<const void> keptTemplate(const std::string& text) {
    return std::make_shared<const Template>(kel::String(text));
}

std::vector<std::function<std::size_t()>> forTwoThreads(const workload& work, sharing what) {
    const std::shared_ptr<const ContextDictionary> context = toContext(work.data);
    if (what == sharing::buildOutput) {
        writeFiles(".", ours(work));
        const auto render = [text = kel::String(ours(work).text), context] {
            kel::String errors;
            return std::size_t{buildOutput(text, *context, errors).size()};
        };
        return {render, render};
    }
    const auto rendering = [&] {
        return [own = std::make_shared<const prepared>(work, context)] {
            return std::size_t{own->render().text.size()};
        };
    };
    const auto first = rendering();
    return {first, what == sharing::oneTemplate ? first : rendering()};
}

} // namespace bench
