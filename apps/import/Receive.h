#ifndef KELVA_APPS_IMPORT_RECEIVE_H_
#define KELVA_APPS_IMPORT_RECEIVE_H_

#include <memory>
#include <optional>
#include <string>

#include "apps/files/NewFile.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/FileStream.h"

namespace apps {

/// A whole file that came in pieces, under a temporary name.
struct Received {
  std::unique_ptr<NewFile> file;
  std::string sha1;
  bool verified;  ///< as FileStream::End says
};

/// Writes a file of `size` bytes as it comes, until its reader ends it. Nothing when the reader gives it up. Throws Failure.
std::optional<Received> Receive(FileStream& stream, const TargetFolder& folder, unsigned long long size);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_RECEIVE_H_
