// SPDX-License-Identifier: Apache-2.0
// UserGroup.h - local groups and their members through the system's shadow
// tools, "id" and "/etc/group".
//
// Made by the platform factory (LinuxPlatform::CreateUserGroup) and owned
// through SmartPtr. It holds no state: any thread may call it, and each call
// blocks while the shell it starts runs. Names go to the shell unquoted:
// pass plain account names only.
//
// Example:
//   SmartPtr<IUserGroup> groups(new UserGroup);
//   _Result result = ResultFail;
//   groups->AddUser("operator", "video", result);    // usermod -aG video operator
//   groups->RemoveUser("operator", "video", result);
#ifndef KIVPLR_USERGROUP_H
#define KIVPLR_USERGROUP_H

#include <KivPlr/accounts/IUserGroup.h>
#include <KivPlr/core/Export.h>
#include <KivPlr/core/Object.h>

namespace KivPlr {

class KIVPLR_API UserGroup : private Object, public IUserGroup
{
public:
    /// Runs "usermod -aG <group> <user>". A null name gives 500 and runs nothing.
    void AddUser(const char* userName, const char* groupName, _Result& result) override;
    /// Runs "groupadd <group>". A null name gives 500 and runs nothing.
    void Add(const char* groupName, _Result& result) override;
    /// Runs "groupdel <group>". A null name gives 500 and runs nothing.
    void Delete(const char* groupName, _Result& result) override;
    /// Reads "/etc/group" piece by piece (a piece ends at ":" or at a line
    /// feed). After a piece equal to \p groupName, two pieces are skipped and
    /// then every piece that ends at "," or a line feed is appended, up to
    /// the end of the file: the names of the matching entry, one empty name
    /// when its member list is empty, and then every later line (split at
    /// commas) as further names. 200 if \p members is non-empty afterwards,
    /// even when the file cannot be opened. A null name gives 500 and
    /// leaves \p members alone.
    void GetMembers(const char* groupName, std::vector<std::string>& members, _Result& result) override;
    /// Lists the user's groups with "id -nG" (own-name group included) and
    /// runs "usermod -g" when there are exactly two, else "usermod -G",
    /// followed by every listed group that is neither the user's name nor
    /// \p groupName, each after a space, and a space and the user name. The
    /// groups are separated by spaces, not commas. An empty list (or a null
    /// name) gives 500 and runs nothing.
    void RemoveUser(const char* userName, const char* groupName, _Result& result) override;

protected:
    ~UserGroup() override = default;

    /// The file GetMembers reads: "/etc/group".
    virtual const char* GroupFile();
};

} // namespace KivPlr

#endif
