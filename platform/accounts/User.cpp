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
#include <dlfcn.h>
#include <security/pam_appl.h>

namespace KivPlr {

namespace {

void CheckResultReference(_Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"User: result NULL reference.");
}

// libpam and libcrypt are not linked: a program that never checks a
// password or adds a user (the daemon) then maps neither them nor what they
// pull in (libaudit, libcap-ng). They are loaded on first use and stay
// loaded for the life of the process. libpam goes into the global scope and
// its functions are looked up there rather than in the loaded handle, so
// that a library preloaded ahead of it (pam_wrapper in the tests) still
// answers first, as it would for a linked program.
template <typename Function>
Function FindGlobal(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
}

bool LoadGlobal(const char* soname)
{
    return dlopen(soname, RTLD_NOW | RTLD_GLOBAL) != nullptr;
}

// The PAM calls of this file; all null when libpam.so.0 cannot be loaded or
// lacks one of them.
struct PamCalls
{
    decltype(&pam_start) start = nullptr;
    decltype(&pam_authenticate) authenticate = nullptr;
    decltype(&pam_acct_mgmt) accountManagement = nullptr;
    decltype(&pam_chauthtok) changeToken = nullptr;
    decltype(&pam_end) end = nullptr;
};

PamCalls LoadPam()
{
    PamCalls found;
    if (!LoadGlobal("libpam.so.0"))
        return found;
    found.start = FindGlobal<decltype(&pam_start)>("pam_start");
    found.authenticate = FindGlobal<decltype(&pam_authenticate)>("pam_authenticate");
    found.accountManagement = FindGlobal<decltype(&pam_acct_mgmt)>("pam_acct_mgmt");
    found.changeToken = FindGlobal<decltype(&pam_chauthtok)>("pam_chauthtok");
    found.end = FindGlobal<decltype(&pam_end)>("pam_end");
    if (found.start && found.authenticate && found.accountManagement && found.changeToken && found.end)
        return found;
    return PamCalls();
}

// Loaded by the first caller; a static local, so concurrent first calls wait
// for one load.
const PamCalls& Pam()
{
    static const PamCalls calls = LoadPam();
    return calls;
}

typedef char* (*CryptFunction)(const char*, const char*, struct crypt_data*);

// crypt_r from libcrypt.so.1 itself, null when it cannot be loaded. Not
// from the global scope: a preloaded interceptor of crypt_r
// (AddressSanitizer's) that met no libcrypt at start-up has nothing to
// forward to and would call a null pointer.
CryptFunction LoadCrypt()
{
    void* library = dlopen("libcrypt.so.1", RTLD_NOW);
    return library != nullptr ? reinterpret_cast<CryptFunction>(dlsym(library, "crypt_r")) : nullptr;
}

CryptFunction Crypt()
{
    static const CryptFunction function = LoadCrypt();
    return function;
}

// Runs one "check_user" transaction for userName in which every hidden
// prompt is answered with password; step makes the PAM calls and returns the
// status of the last one, which pam_end gets too. 500 when PAM cannot be
// loaded or cannot start.
template <typename Step>
_Result RunTransaction(const char* userName, const char* password, Step step)
{
    if (userName == nullptr || password == nullptr)
        return ResultFail;
    const PamCalls& pam = Pam();
    if (pam.start == nullptr)
        return ResultFail;
    PamConversation answers(password);
    struct pam_conv conversation = {PamConversation::Converse, &answers};
    pam_handle_t* handle = nullptr;
    if (pam.start(PamConversation::ServiceName, userName, &conversation, &handle) != PAM_SUCCESS)
        return ResultFail;
    int status = step(pam, handle);
    pam.end(handle, status);
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
    result = RunTransaction(userName, password, [](const PamCalls& pam, pam_handle_t* handle) {
        int status = pam.authenticate(handle, PAM_SILENT);
        if (status == PAM_SUCCESS)
            status = pam.accountManagement(handle, 0);
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
                            [](const PamCalls& pam, pam_handle_t* handle) {
                                return pam.changeToken(handle, PAM_SILENT);
                            });
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
    // Without libcrypt there is no hash: null, so Add gives 500.
    CryptFunction cryptR = Crypt();
    return cryptR != nullptr ? cryptR(password, password, &work) : nullptr;
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
