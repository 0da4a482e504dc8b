#include "support/options.h"

#include "support/failure.h"

#include <algorithm>

namespace example
{

namespace
{

bool Holds(const std::vector<std::string>& words, const std::string& word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

} // namespace

bool ReadCommandLine(int argc, char** argv, const CommandLine& line)
{
    bool isHelpWanted = false;
    bool hasSurface = false;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--help") {
            isHelpWanted = true;
        } else if (Holds(line.flags, word)) {
            line.take(word, "");
        } else if (Holds(line.valued, word)) {
            if (++i == argc || *argv[i] == '\0')
                throw Failure(word + " needs a value; see --help");
            line.take(word, argv[i]);
        } else if (word.empty() || word.starts_with("-") || line.surface == nullptr) {
            throw Failure("there is no option '" + word + "'; see --help");
        } else if (hasSurface) {
            throw Failure("one surface at a time: " + *line.surface + " or " + word);
        } else {
            *line.surface = word;
            hasSurface = true;
        }
    }
    return isHelpWanted;
}

} // namespace example
