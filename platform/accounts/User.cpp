// SPDX-License-Identifier: Apache-2.0
#include "User.h"

#include "FatalError.h"
#include "PamConversation.h"
#include "AccountTool.h"
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

// Runs one "check_user" transaction for userName in which every hidden
// prompt is answered with password; step makes the PAM calls and returns the
// status of the last one, which pam_end gets too. 500 when PAM cannot start.
template <typename Step>
_Result RunTransaction(const char* userName, const char* password, Step step)
{
    if (userName == nullptr || password == nullptr)
        return ResultFail;
    PamConversation answers(password);
    struct pam_conv conversation = {PamConversation::Converse, &answers};
    pam_handle_t* handle = nullptr;
    if (pam_start(PamConversation::ServiceName, userName, &conversation, &handle) != PAM_SUCCESS)
        return ResultFail;
    int status = step(handle);
    pam_end(handle, status);
    return status == PAM_SUCCESS ? ResultPass : ResultFail;
}

} // namespace

void User::Authenticate(const char* userName, const char* password, _Result& result)
{
    CheckResultReference(result);
    result = RunTransaction(userName, password, [](pam_handle_t* handle) {
        int status = pam_authenticate(handle, PAM_SILENT);
        if (status == PAM_SUCCESS)
            status = pam_acct_mgmt(handle, 0);
        return status;
    });
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
    result = RunAndWipe(AccountTool::Format("useradd %s -p %s", userName, hash));
}

void User::Delete(const char* userName, _Result& result)
{
    CheckResultReference(result);
    result = ResultFail;
    if (userName == nullptr)
        return;
    result = RunAndWipe(AccountTool::Format("userdel %s", userName));
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
    result = RunTransaction(userName, newPassword,
                            [](pam_handle_t* handle) { return pam_chauthtok(handle, PAM_SILENT); });
}

_Result User::RunAndWipe(char* commandLine)
{
    if (commandLine == nullptr)
        return ResultFail;
    _Result result = AccountTool::Run(commandLine);
    // The useradd line holds the password hash.
    AccountTool::Wipe(commandLine);
    ReleaseCommandLine(commandLine);
    return result;
}

const char* User::HashPassword(const char* password)
{
    return crypt(password, password);
}

void User::ReleaseCommandLine(char* commandLine)
{
    AccountTool::Release(commandLine);
}

} // namespace KivPlr
