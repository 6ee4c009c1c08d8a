// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/CollectorOptions.h>

namespace KivCollector {

bool CollectorOptions::Parse(int argc, const char* const* argv)
{
    request = Request::Collect;
    quiet = false;
    outputFile = DefaultOutputFile;
    problem.clear();
    for (int index = 1; index < argc; ++index) {
        std::string argument = argv[index] != nullptr ? argv[index] : "";
        if (argument == "--help" || argument == "--version") {
            request = argument == "--help" ? Request::Help : Request::Version;
            return true;
        }
    }
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

std::string CollectorOptions::Answer() const
{
    if (request == Request::Version)
        return std::string("statuscollector ") + KIV_VERSION + "\n";
    if (request == Request::Help)
        return std::string(Usage) + "\n"
               "       statuscollector --help | --version\n"
               "Writes the status snapshot of this machine (network devices, display outputs,\n"
               "model code from STATUSCOLLECTOR_MODEL_CODE) to " + DefaultOutputFile + ".\n"
               "  -nolog        print no diagnostics\n"
               "  -output FILE  write FILE instead\n";
    return "";
}

} // namespace KivCollector
