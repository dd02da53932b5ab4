#ifndef TOOLS_STENCILOR_COMMANDS_REQUEST_H
#define TOOLS_STENCILOR_COMMANDS_REQUEST_H

#include <optional>
#include <string>
#include <vector>

namespace stencilor {

enum class Format { Text, Json, Sarif };

enum class Color { Auto, Always, Never };

/// Where the values of a context come from, and how it is made. No file is an empty object.
struct ContextRequest {
    std::optional<std::string> file;
    std::vector<std::string> definitions;
    bool positions = false; // of the elements of lists

    bool isGiven() const { return file || !definitions.empty(); }
};

/// What all commands are asked for. In place of a file, `-` is a standard stream.
struct Request {
    std::vector<std::string> templateFiles;
    std::optional<std::string> standardInputName; ///< the file that a template on it belongs to
    std::optional<std::string> root;              ///< none is the folder of each template
    ContextRequest context;
    std::string outputFile = "-";
    Format format = Format::Text;
    Color color = Color::Auto;
    bool quiet = false;
};

} // namespace stencilor

#endif
