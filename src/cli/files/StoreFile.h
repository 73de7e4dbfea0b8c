#ifndef KELVA_CLI_FILES_STORE_FILE_H_
#define KELVA_CLI_FILES_STORE_FILE_H_

#include <span>
#include <string>

#include "files/TargetFolder.h"

namespace kelva {

/// `name` with a number before its extension: "IMG_0001.JPG", 2 is "IMG_0001-2.JPG"; 1 is the name itself.
std::string Numbered(const std::string& name, int number);

/// Stores whole, flushed bytes under a name that must be free. Throws Failure when it is not.
void StoreNew(const TargetFolder& folder, const std::string& name, std::span<const char> bytes);
/// As StoreNew, in place of what has the name.
void StoreReplacing(const TargetFolder& folder, const std::string& name, std::span<const char> bytes);

/// Where bytes ended up.
struct Stored {
  std::string name;
  bool wasThere = false;  ///< the same bytes were there under this name already, and nothing was written
};
/// Stores bytes under the name with the number `first`, or where that is taken by something else, under the next free
/// numbered one. `sha1` is that of the bytes. The caller flushes the folder.
Stored StoreBeside(const TargetFolder& folder, const std::string& name, std::span<const char> bytes,
                   const std::string& sha1, int first = 1);

}  // namespace kelva

#endif  // KELVA_CLI_FILES_STORE_FILE_H_
