#ifndef TOOLS_COMPLETION_H
#define TOOLS_COMPLETION_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace statectl {

/// What may stand in the place of the last word of a command line: subcommands, and the options of the subcommand that
/// the words before it name, and values of which there is a list. Nothing where another value or a command stands.
/// `words` are those after the program's name; the last one is what has been typed of the word so far.
std::vector<std::string> completions(CLI::App const& program, std::vector<std::string> const& words);

}  // namespace statectl

#endif
