// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/UserGroup.h>

#include <KivPlr/accounts/AccountTool.h>
#include <KivPlr/accounts/UserGroupList.h>
#include <KivPlr/core/FatalError.h>
#include <KivPlr/core/Path.h>
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/FileManager.h>
#include <KivPlr/io/StreamReader.h>

#include <cstdint>

namespace KivPlr {

namespace {

constexpr std::uint32_t FieldDelimiter = ':';
constexpr std::uint32_t MemberDelimiter = ',';

void CheckResultReference(_Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"UserGroup: result NULL reference.");
}

_Result RunFormatted(char* commandLine)
{
    if (commandLine == nullptr)
        return ResultFail;
    _Result result = AccountTool::Run(commandLine);
    AccountTool::Release(commandLine);
    return result;
}

} // namespace

void UserGroup::AddUser(const char* userName, const char* groupName, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (userName == nullptr || groupName == nullptr)
        return;
    result = RunFormatted(AccountTool::Format("usermod -aG %s %s", groupName, userName));
}

void UserGroup::Add(const char* groupName, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (groupName == nullptr)
        return;
    result = RunFormatted(AccountTool::Format("groupadd %s", groupName));
}

void UserGroup::Delete(const char* groupName, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (groupName == nullptr)
        return;
    result = RunFormatted(AccountTool::Format("groupdel %s", groupName));
}

void UserGroup::GetMembers(const char* groupName, std::vector<std::string>& members, _Result& result)
{
    CheckResultReference(result);
    if (IsNullReference(&members))
        FatalError(L"UserGroup: members NULL reference.");
    result = ResultFail;
    if (groupName == nullptr)
        return;
    SmartPtr<IFileManager> files(new FileManager);
    SmartPtr<IStream> stream;
    _Result openResult = ResultFail;
    files->OpenRead(Path(GroupFile()), stream, openResult);
    if (Succeeded(openResult)) {
        SmartPtr<IStreamReader> reader(new StreamReader(stream));
        std::string piece;
        // A line feed ends a piece as well as ':' does, so every field and the
        // whole member list of every entry is compared with the group name.
        for (;;) {
            _Result readResult = ResultFail;
            reader->ReadLine(piece, FieldDelimiter, readResult);
            if (readResult != ResultPass)
                break;
            if (piece != groupName)
                continue;
            _Result skipped = ResultFail;
            reader->ReadLine(piece, FieldDelimiter, skipped); // password
            reader->ReadLine(piece, FieldDelimiter, skipped); // group id
            // The member list deliberately reads past the matching entry to the
            // end of the file; callers look for the names they expect in it.
            for (;;) {
                reader->ReadLine(piece, MemberDelimiter, readResult);
                if (readResult != ResultPass)
                    break;
                members.push_back(piece);
            }
        }
        _Result closed = ResultFail;
        stream->Close(closed);
    }
    result = members.empty() ? ResultFail : ResultPass;
}

const char* UserGroup::GroupFile()
{
    return "/etc/group";
}

void UserGroup::RemoveUser(const char* userName, const char* groupName, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (userName == nullptr || groupName == nullptr)
        return;
    std::vector<std::string> groups;
    UserGroupList::Read(userName, UserGroupList::KeepOwnGroup, groups);
    if (groups.empty())
        return;
    // Exactly two groups switch to the primary-group option, and the list is
    // separated by spaces: this is how the operation is defined.
    std::string commandLine = groups.size() == 2 ? "usermod -g" : "usermod -G";
    for (const std::string& group : groups) {
        if (group == userName || group == groupName)
            continue;
        commandLine += ' ';
        commandLine += group;
    }
    commandLine += ' ';
    commandLine += userName;
    result = AccountTool::Run(commandLine.c_str());
}

} // namespace KivPlr
