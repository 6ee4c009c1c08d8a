// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/UserGroupList.h>

#include <KivPlr/accounts/AccountTool.h>
#include <KivPlr/core/FatalError.h>

namespace KivPlr {

namespace {

// Takes the address: passing the reference on would bind a new reference to
// the null address.
void CheckGroupsReference(const std::vector<std::string>* groups)
{
    if (IsNullReference(groups))
        FatalError(L"UserGroupList: groups NULL reference.");
}

} // namespace

void UserGroupList::Read(const char* userName, OwnGroup ownGroup, std::vector<std::string>& groups)
{
    // Before the shell runs: a call with nowhere to put the names is a
    // programming error, not a reason to start "id".
    CheckGroupsReference(&groups);
    if (userName == nullptr)
        return;
    std::string commandLine = std::string("id -nG ") + userName;
    std::string output;
    AccountTool::ReadOutput(commandLine.c_str(), output);
    Split(output, userName, ownGroup, groups);
}

void UserGroupList::Split(const std::string& output, const char* userName, OwnGroup ownGroup,
                          std::vector<std::string>& groups)
{
    CheckGroupsReference(&groups);
    std::string::size_type start = 0;
    while (start < output.size()) {
        std::string::size_type end = output.find_first_of(" \n", start);
        if (end == start)
            break;
        std::string word = output.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (ownGroup == KeepOwnGroup || userName == nullptr || word != userName)
            groups.push_back(word);
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
}

} // namespace KivPlr
