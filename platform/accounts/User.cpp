// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/User.h>

#include <KivPlr/accounts/AccountTool.h>
#include <KivPlr/accounts/PamConversation.h>
#include <KivPlr/accounts/UserGroupList.h>
#include <KivPlr/core/FatalError.h>

#include <crypt.h>
#include <cstddef>
#include <cstdlib>
#include <cstring>
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

// The work area of crypt_r, 32 KiB with libxcrypt: on the heap, since a
// platform thread may have been given a small stack. It starts zeroed, as
// crypt_r wants it on first use. Null when there is no memory.
struct crypt_data* NewHashWorkArea()
{
    return static_cast<struct crypt_data*>(std::calloc(1, sizeof(struct crypt_data)));
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
    struct crypt_data* work = NewHashWorkArea();
    if (work == nullptr)
        return;
    const char* hash = HashPassword(password, *work);
    char* commandLine = hash != nullptr ? AccountTool::Format("useradd %s -p %s", userName, hash) : nullptr;
    // From here the line holds the only copy of the hash; the work area also
    // holds the key schedule made from the password.
    explicit_bzero(work, sizeof *work);
    ReleaseHashWorkArea(work, sizeof *work);
    // A null line (no hash, or formatting failed) gives 500 and runs nothing.
    result = RunAndWipe(commandLine);
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
    _Result result = RunCommandLine(commandLine);
    // The useradd line holds the password hash.
    AccountTool::Wipe(commandLine);
    ReleaseCommandLine(commandLine);
    return result;
}

const char* User::HashPassword(const char* password, struct crypt_data& work)
{
    // crypt_r, not crypt_rn: on a salt it cannot use it answers with the same
    // failure token ("*0") as crypt does, and useradd is given that token.
    return crypt_r(password, password, &work);
}

void User::ReleaseHashWorkArea(struct crypt_data* work, std::size_t)
{
    std::free(work);
}

void User::ReleaseCommandLine(char* commandLine)
{
    AccountTool::Release(commandLine);
}

_Result User::RunCommandLine(const char* commandLine)
{
    return AccountTool::Run(commandLine);
}

} // namespace KivPlr
