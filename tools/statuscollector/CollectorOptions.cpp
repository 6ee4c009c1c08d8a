// SPDX-License-Identifier: Apache-2.0
#include "CollectorOptions.h"

namespace KivCollector {

bool CollectorOptions::Parse(int argc, const char* const* argv)
{
    quiet = false;
    outputFile = DefaultOutputFile;
    problem.clear();
    for (int index = 1; index < argc; ++index) {
        if (argv[index] != nullptr && std::string(argv[index]) == "-nolog")
            quiet = true;
    }
    for (int index = 1; index < argc; ++index) {
        std::string argument = argv[index] != nullptr ? argv[index] : "";
        if (argument == "-nolog")
            continue;
        if (argument == "-output") {
            if (index + 1 >= argc || argv[index + 1] == nullptr || *argv[index + 1] == '\0') {
                problem = "-output needs a file name";
                return false;
            }
            outputFile = argv[++index];
            continue;
        }
        problem = "unknown argument \"" + argument + "\"";
        return false;
    }
    return true;
}

} // namespace KivCollector
