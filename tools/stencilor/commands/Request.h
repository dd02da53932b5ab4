#ifndef TOOLS_STENCILOR_COMMANDS_REQUEST_H
#define TOOLS_STENCILOR_COMMANDS_REQUEST_H

#include <optional>
#include <string>
#include <vector>

namespace stencilor {

enum class Format { Text, Json, Sarif };

enum class Color { Auto, Always, Never };

/// The source of a context, and how to create it. Without a file, the context is empty.
struct ContextRequest {
    std::optional<std::string> file;
    std::vector<std::string> definitions;
    bool positions = false; // of list elements

    bool isGiven() const { return file || !definitions.empty(); }
};

/// The arguments common to all commands. `-` means a standard stream.
struct Request {
    std::vector<std::string> templateFiles;
    std::optional<std::string> standardInputName; ///< the file that a template on stdin belongs to
    std::optional<std::string> root;              ///< the default is the folder of each template
    ContextRequest context;
    std::string outputFile = "-";
    Format format = Format::Text;
    Color color = Color::Auto;
    bool quiet = false;
};

} // namespace stencilor

#endif
