// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/ResponderOptions.h>

namespace KivResponder {

bool ResponderOptions::Parse(int argc, const char* const* argv)
{
    request = Request::Run;
    descriptionsDirectory = DefaultDescriptionsDirectory;
    stateDirectory = DefaultStateDirectory;
    interfaces.clear();
    problem.clear();
    for (int index = 1; index < argc; ++index) {
        std::string argument = argv[index] != nullptr ? argv[index] : "";
        if (argument == "--help" || argument == "--version") {
            request = argument == "--help" ? Request::Help : Request::Version;
            return true;
        }
    }
    for (int index = 1; index < argc; ++index) {
        std::string argument = argv[index] != nullptr ? argv[index] : "";
        std::string option = argument.substr(0, argument.find('='));
        std::string* target = nullptr;
        std::string interfaceName;
        if (option == "--descriptions-dir")
            target = &descriptionsDirectory;
        else if (option == "--state-dir")
            target = &stateDirectory;
        else if (option == "--interface")
            target = &interfaceName;
        if (target == nullptr) {
            problem = "unknown argument \"" + argument + "\"";
            return false;
        }
        std::string value;
        if (option.size() < argument.size()) {
            value = argument.substr(option.size() + 1);
        } else if (index + 1 < argc && argv[index + 1] != nullptr) {
            value = argv[++index];
        }
        if (value.empty()) {
            problem = option + " needs a value";
            return false;
        }
        *target = value;
        if (target == &interfaceName)
            interfaces.push_back(interfaceName);
    }
    return true;
}

std::string ResponderOptions::Answer() const
{
    if (request == Request::Version)
        return std::string("discovery-responder ") + KIV_VERSION + "\n";
    if (request == Request::Help)
        return std::string(Usage) + "\n"
               "       discovery-responder --help | --version\n"
               "Answers WS-Discovery probes and resolves for every description in the descriptions\n"
               "directory and announces them with Hello and Bye, on UDP port 3702.\n"
               "  --descriptions-dir DIR  read the descriptions from DIR (default " +
               DefaultDescriptionsDirectory + ")\n"
               "  --state-dir DIR         keep the state file in DIR (default " + DefaultStateDirectory + ")\n"
               "  --interface NAME        serve only interface NAME (repeatable; default: every\n"
               "                          multicast-capable interface but loopback)\n";
    return "";
}

} // namespace KivResponder
