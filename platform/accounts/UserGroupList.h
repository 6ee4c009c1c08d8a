// SPDX-License-Identifier: Apache-2.0
// UserGroupList.h - the list of a user's groups as the "id" tool prints it.
//
// User::GetGroups and UserGroup::RemoveUser read a user's groups by running
// "id -nG <user>" and splitting its output into names. Stateless; any
// thread may call it (each call blocks while its shell runs). A null
// \p groups reference ends the process (FatalError).
//
// Example:
//   std::vector<std::string> groups;
//   UserGroupList::Read("operator", UserGroupList::KeepOwnGroup, groups);
//   // "operator video audio\n" -> operator, video, audio
#ifndef KIVPLR_USERGROUPLIST_H
#define KIVPLR_USERGROUPLIST_H

#include <string>
#include <vector>

namespace KivPlr {

class UserGroupList
{
public:
    /// Whether the group named like the user is listed.
    enum OwnGroup
    {
        LeaveOutOwnGroup,
        KeepOwnGroup
    };

    /// Runs "id -nG " followed by \p userName (unquoted) and appends the
    /// words of its output to \p groups as Split does. A command that cannot
    /// be started appends nothing.
    static void Read(const char* userName, OwnGroup ownGroup, std::vector<std::string>& groups);

    /// Splits \p output into words at each space and each line feed, from the
    /// start; an empty word (two separators in a row, a separator at the
    /// start, or the end after a final separator) ends the splitting, and a
    /// last word without a separator after it counts. Each word is appended
    /// to \p groups, except words equal to \p userName under LeaveOutOwnGroup.
    static void Split(const std::string& output, const char* userName, OwnGroup ownGroup,
                      std::vector<std::string>& groups);
};

} // namespace KivPlr

#endif
