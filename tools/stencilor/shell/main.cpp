#include <tools/stencilor/shell/ShellFiles.h>

#include <fstream>
#include <iostream>
#include <string>
#include <vector>

// Writes the shell completions and the manual page: stencilor_shell_files KIND FILE.

namespace {

using Writer = std::string (*)(const stencilor::CommandTable&);

/// The table without hidden options.
stencilor::CommandTable shownTable() {
    stencilor::CommandTable table = stencilor::makeCommandTable();
    for (stencilor::CommandInfo& command : table.commands) {
        std::erase_if(command.options, [](const auto& option) { return option.hidden; });
    }
    return table;
}

Writer findWriter(const std::string& kind) {
    return kind == "bash"   ? stencilor::bashCompletion
           : kind == "zsh"  ? stencilor::zshCompletion
           : kind == "fish" ? stencilor::fishCompletion
           : kind == "man"  ? stencilor::manualPage
                            : nullptr;
}

} // namespace

int main(int argc, char** argv) {
    const Writer write = argc == 3 ? findWriter(argv[1]) : nullptr;
    if (write == nullptr) {
        std::cerr << "usage: stencilor_shell_files bash|zsh|fish|man FILE\n";
        return 2;
    }
    std::ofstream file(argv[2], std::ios::binary);
    file << write(shownTable());
    file.close();
    if (!file) {
        std::cerr << "stencilor_shell_files: cannot write " << argv[2] << '\n';
        return 1;
    }
    return 0;
}
