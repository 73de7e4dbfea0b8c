#ifndef KELVA_APPS_FILES_FOLDER_WRITERS_H_
#define KELVA_APPS_FILES_FOLDER_WRITERS_H_

#include <string>
#include <string_view>

namespace apps {

/// Lets those open a file of an open folder who may write into that folder, and nobody else: who can read a file can lock it. Looks at the
/// folder's permissions and at its access control list. Where this is refused, because the file belongs to somebody else or
/// the file system has no permissions, it stays as it is. Opens no file, and follows no link.
void LimitToWriters(int folder, const char* name);

/// The access control list, as the kernel keeps it, for a file in a folder with the list `folder`: reading and writing for
/// each who may write there. `sameGroup`: the file has the folder's group. Empty when `folder` is no such list.
std::string AclForWriters(std::string_view folder, bool sameGroup);

}  // namespace apps

#endif  // KELVA_APPS_FILES_FOLDER_WRITERS_H_
