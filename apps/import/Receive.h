#ifndef KELVA_APPS_IMPORT_RECEIVE_H_
#define KELVA_APPS_IMPORT_RECEIVE_H_

#include <memory>
#include <optional>
#include <string>

#include "apps/files/NewFile.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/CutFiles.h"
#include "apps/import/FileStream.h"
#include "apps/import/Manifest.h"
#include "apps/import/Pattern.h"

namespace apps {

/// A file that is to come in pieces.
struct Arrival {
  ManifestKey key;
  unsigned long long size;     ///< of the whole file
  const LocalPath& path;       ///< where it is to lie
  const TargetFolder& folder;  ///< the last one of the path
  std::optional<Part> part;    ///< what an earlier run left of it
};

/// A whole file that came in pieces, under a temporary name.
struct Received {
  std::unique_ptr<NewFile> file;
  std::string sha1;
  bool verified;  ///< as FileStream::End says
  bool byKey;     ///< its reader did not wait for the SHA-1, which has to be the key
};

/// Writes a file as it comes, until its reader ends it. Nothing when it did not become whole: its reader has dropped it, or
/// it is kept for a later run, which finds it by the manifest. A large one is kept from its 32nd megabyte on, so that it
/// outlives the process. Throws Failure.
std::optional<Received> Receive(FileStream& stream, Arrival arrival, Manifest& manifest);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_RECEIVE_H_
