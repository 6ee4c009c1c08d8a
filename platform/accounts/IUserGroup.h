// SPDX-License-Identifier: Apache-2.0
// IUserGroup.h - the platform's service for local groups and their members.
//
// Adds and deletes groups with the system's shadow tools, adds a user to a
// group or takes one out, and lists a group's members from "/etc/group".
// Made by the platform factory and owned through SmartPtr; an
// implementation holds no state, so any thread may use it.
//
// Example:
//   SmartPtr<IUserGroup> groups(Platform::GetInstance()->CreateUserGroup());
//   _Result result = ResultFail;
//   groups->Add("video", result);
//   groups->AddUser("operator", "video", result);
#ifndef KIVPLR_IUSERGROUP_H
#define KIVPLR_IUSERGROUP_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/IObject.h>

#include <string>
#include <vector>

namespace KivPlr {

class KIVPLR_API IUserGroup : public virtual IObject
{
public:
    /// Adds \p userName to \p groupName with "usermod -aG": 200 when the tool
    /// exits with status 0, 500 otherwise.
    virtual void AddUser(const char* userName, const char* groupName, _Result& result) = 0;
    /// Creates the group with "groupadd": 200 on exit status 0, else 500.
    virtual void Add(const char* groupName, _Result& result) = 0;
    /// Deletes the group with "groupdel": 200 on exit status 0, else 500.
    virtual void Delete(const char* groupName, _Result& result) = 0;
    /// Appends the members listed for \p groupName in "/etc/group" to
    /// \p members (not cleared first) and, past them, every later piece of
    /// the file. 200 if \p members is non-empty afterwards, else 500.
    virtual void GetMembers(const char* groupName, std::vector<std::string>& members, _Result& result) = 0;
    /// Takes \p userName out of \p groupName by setting the user's group list
    /// anew with "usermod". 500 without running anything when the user's
    /// group list is empty; otherwise the tool's exit status decides.
    virtual void RemoveUser(const char* userName, const char* groupName, _Result& result) = 0;

protected:
    /// Objects end through their last Release, never through a delete.
    ~IUserGroup() override = default;
};

} // namespace KivPlr

#endif
