// SPDX-License-Identifier: Apache-2.0
// User.h - local user accounts through PAM and the system's shadow tools.
//
// Made by the platform factory (LinuxPlatform::CreateUser) and owned through
// SmartPtr. It holds no state: any thread may call it, and each call blocks
// while the shell or PAM transaction it starts runs. Names and passwords go
// to the shell unquoted: pass plain account names only.
//
// Example:
//   SmartPtr<IUser> users(new User);
//   _Result result = ResultFail;
//   users->Add("operator", "s3cret", result);        // useradd operator -p <hash>
//   users->Authenticate("operator", "s3cret", result);
#ifndef KIVPLR_USER_H
#define KIVPLR_USER_H

#include <KivPlr/accounts/IUser.h>
#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>

#include <cstddef>

// The C library's work area for crypt_r (<crypt.h>, which users of this
// header do not need).
struct crypt_data;

namespace KivPlr {

class KIVPLR_API User : private Object, public IUser
{
public:
    /// pam_authenticate (PAM_SILENT), then pam_acct_mgmt, in one "check_user"
    /// transaction; every hidden prompt is answered with \p password. 500
    /// when PAM cannot start or a name or the password is null.
    void Authenticate(const char* userName, const char* password, _Result& result) override;
    /// Runs "useradd <user> -p <hash>" with the hash of HashPassword. A null
    /// hash, a null argument or no memory for the hash's work area gives 500
    /// and runs nothing. The hash's work
    /// area is overwritten with zero bytes before the tool runs, the command
    /// line before it is freed.
    void Add(const char* userName, const char* password, _Result& result) override;
    /// Runs "userdel <user>"; the command line is overwritten with zero bytes
    /// before it is freed. A null name gives 500 and runs nothing.
    void Delete(const char* userName, _Result& result) override;
    /// Runs "id -nG <user>" and appends every group but the own-name group.
    /// A null name gives 500 and leaves \p groups alone.
    void GetGroups(const char* userName, std::vector<std::string>& groups, _Result& result) override;
    /// pam_chauthtok (PAM_SILENT) in a "check_user" transaction; every hidden
    /// prompt (old, new and retyped password alike) is answered with
    /// \p newPassword. 500 when PAM cannot start or an argument is null.
    void SetPassword(const char* userName, const char* newPassword, _Result& result) override;

protected:
    ~User() override = default;

    /// The hash handed to useradd, made in \p work with crypt_r(password,
    /// password): the same text crypt(password, password) gives, so the C
    /// library's traditional DES scheme takes the first two characters of
    /// the password as the salt. Null when crypt_r gives null. The hash
    /// lives in \p work, which belongs to this call alone: no other thread
    /// can overwrite it, as one could crypt's static buffer.
    virtual const char* HashPassword(const char* password, struct crypt_data& work);
    /// Frees the work area of HashPassword (\p size bytes), already
    /// overwritten with zero bytes.
    virtual void ReleaseHashWorkArea(struct crypt_data* work, std::size_t size);
    /// Frees a command line of Add or Delete, already overwritten with zero
    /// bytes.
    virtual void ReleaseCommandLine(char* commandLine);
    /// Runs a command line of Add or Delete: AccountTool::Run.
    virtual _Result RunCommandLine(const char* commandLine);

private:
    /// Runs a line from AccountTool::Format (null gives 500), then wipes it
    /// and hands it to ReleaseCommandLine.
    _Result RunAndWipe(char* commandLine);
};

} // namespace KivPlr

#endif
