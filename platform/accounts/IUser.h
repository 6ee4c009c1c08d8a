// SPDX-License-Identifier: Apache-2.0
// IUser.h - the platform's service for local user accounts.
//
// Checks and changes a user's password through PAM (service "check_user"),
// adds and deletes users with the system's shadow tools, and lists the
// groups a user belongs to. Made by the platform factory and owned through
// SmartPtr; an implementation holds no state, so any thread may use it.
//
// Example:
//   SmartPtr<IUser> users(Platform::GetInstance()->CreateUser());
//   _Result result = ResultFail;
//   users->Authenticate("operator", "Secret12", result);
//   std::vector<std::string> groups;
//   users->GetGroups("operator", groups, result);
#ifndef KIVPLR_IUSER_H
#define KIVPLR_IUSER_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <string>
#include <vector>

namespace KivPlr {

class KIVPLR_API IUser : public virtual IObject
{
public:
    /// 200 if PAM authenticates \p userName with \p password and its account
    /// management accepts the account (not expired, not locked), else 500.
    virtual void Authenticate(const char* userName, const char* password, _Result& result) = 0;
    /// Adds the user with "useradd": 200 when the tool exits with status 0,
    /// 500 otherwise. The names reach the shell unquoted.
    virtual void Add(const char* userName, const char* password, _Result& result) = 0;
    /// Deletes the user with "userdel" (home directory and mail are kept):
    /// 200 when the tool exits with status 0, 500 otherwise.
    virtual void Delete(const char* userName, _Result& result) = 0;
    /// Appends the names of the user's groups, except the group named like
    /// the user, to \p groups (which is not cleared first). 200 if \p groups
    /// is non-empty afterwards, else 500.
    virtual void GetGroups(const char* userName, std::vector<std::string>& groups, _Result& result) = 0;
    /// Sets the user's password through PAM: 200 if PAM changed it, else 500.
    virtual void SetPassword(const char* userName, const char* newPassword, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IUser() override = default;
};

} // namespace KivPlr

#endif
