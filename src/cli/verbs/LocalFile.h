#ifndef KELVA_CLI_VERBS_LOCAL_FILE_H_
#define KELVA_CLI_VERBS_LOCAL_FILE_H_

#include <string>
#include <vector>

namespace kelva {

/// Reads a whole regular file of this computer, at most `most` bytes. Throws Failure: missing, unreadable, no regular file,
/// too large.
std::vector<char> ReadLocalFile(const std::string& path, unsigned long long most);

}  // namespace kelva

#endif  // KELVA_CLI_VERBS_LOCAL_FILE_H_
