#ifndef KELVA_APPS_KELVA_VERBS_LOCAL_FILE_H_
#define KELVA_APPS_KELVA_VERBS_LOCAL_FILE_H_

#include <string>
#include <vector>

namespace apps {

/// Reads a whole regular file of this computer, at most `most` bytes. Throws Failure: missing, unreadable, not a
/// regular file, too large.
std::vector<char> ReadLocalFile(const std::string& path, unsigned long long most);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_LOCAL_FILE_H_
