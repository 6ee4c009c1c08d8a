#include "User.h"

#include "FatalError.h"
#include "PamConversation.h"
#include "ShellCommand.h"
#include "UserGroupList.h"

#include <crypt.h>
#include <security/pam_appl.h>

namespace KivPlr {

namespace {

void CheckResultReference(_Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"User: result NULL reference.");
}

// Opens a "check_user" transaction for userName that answers with password;
// null when PAM cannot start it.
pam_handle_t* StartTransaction(const char* userName, const struct pam_conv& conversation)
{
    pam_handle_t* handle = nullptr;
    if (pam_start(PamConversation::ServiceName, userName, &conversation, &handle) != PAM_SUCCESS)
        return nullptr;
    return handle;
}

} // namespace

void User::Authenticate(const char* userName, const char* password, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (userName == nullptr || password == nullptr)
        return;
    PamConversation answers(password);
    struct pam_conv conversation = {PamConversation::Converse, &answers};
    pam_handle_t* handle = StartTransaction(userName, conversation);
    if (handle == nullptr)
        return;
    int status = pam_authenticate(handle, PAM_SILENT);
    if (status == PAM_SUCCESS)
        status = pam_acct_mgmt(handle, 0);
    pam_end(handle, status);
    result = status == PAM_SUCCESS ? ResultPass : ResultFail;
}

void User::Add(const char* userName, const char* password, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (userName == nullptr || password == nullptr)
        return;
    const char* hash = HashPassword(password);
    if (hash == nullptr)
        return;
    char* commandLine = ShellCommand::Format("useradd %s -p %s", userName, hash);
    if (commandLine == nullptr)
        return;
    result = ShellCommand::Run(commandLine);
    // The line holds the password hash.
    ShellCommand::Wipe(commandLine);
    ReleaseCommandLine(commandLine);
}

void User::Delete(const char* userName, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (userName == nullptr)
        return;
    char* commandLine = ShellCommand::Format("userdel %s", userName);
    if (commandLine == nullptr)
        return;
    result = ShellCommand::Run(commandLine);
    ShellCommand::Wipe(commandLine);
    ReleaseCommandLine(commandLine);
}

void User::GetGroups(const char* userName, std::vector<std::string>& groups, _Result& result)
{
    CheckResultReference(result);
    if (IsNullReference(&groups))
        FatalError(L"User: groups NULL reference.");
    result = ResultFail;
    if (userName == nullptr)
        return;
    UserGroupList::Read(userName, UserGroupList::LeaveOutOwnGroup, groups);
    result = groups.empty() ? ResultFail : ResultPass;
}

void User::SetPassword(const char* userName, const char* newPassword, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (userName == nullptr || newPassword == nullptr)
        return;
    PamConversation answers(newPassword);
    struct pam_conv conversation = {PamConversation::Converse, &answers};
    pam_handle_t* handle = StartTransaction(userName, conversation);
    if (handle == nullptr)
        return;
    int status = pam_chauthtok(handle, PAM_SILENT);
    pam_end(handle, status);
    result = status == PAM_SUCCESS ? ResultPass : ResultFail;
}

const char* User::HashPassword(const char* password)
{
    return crypt(password, password);
}

void User::ReleaseCommandLine(char* commandLine)
{
    ShellCommand::Release(commandLine);
}

} // namespace KivPlr
