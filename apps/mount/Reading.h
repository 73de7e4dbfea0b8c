#ifndef KELVA_APPS_MOUNT_READING_H_
#define KELVA_APPS_MOUNT_READING_H_

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>

#include "apps/mount/Pieces.h"
#include "apps/mount/Spool.h"
#include "src/wifi/Camera.h"
#include "src/wifi/FileReader.h"

namespace apps {

/// Reads pieces of a camera's files, in any order, with as few commands as that takes: the file that was read last stays
/// selected. A camera that sends files forward only has them read forward into a file of this machine. One thread.
class Reading {
 public:
  /// `onForwardOnly` is called once, when the camera turns out to send files forward only.
  Reading(boost::shared_ptr<Camera> camera, std::function<void()> onForwardOnly)
      : camera_(std::move(camera)), onForwardOnly_(std::move(onForwardOnly)) {}

  /// Piece `index` of a file that its folder lists with `size` bytes. Throws CameraError, Failure, and std::runtime_error
  /// when the file has another size.
  Pieces::Piece Read(std::uint64_t file, const std::string& path, std::uint64_t size, std::uint64_t index);
  /// The file that is selected; 0 for none.
  std::uint64_t Selected() const { return reader_ ? file_ : 0; }
  /// Another command was sent, or the camera was given up.
  void Forget() { reader_.reset(); }
  /// The file is not on the camera any more, or another one.
  void Drop(std::uint64_t file);

 private:
  struct Spooled {
    std::uint64_t file;
    std::uint64_t size;
    Spool spool;
  };

  void Select(std::uint64_t file, const std::string& path, std::uint64_t size);
  Spooled* FindSpooled(std::uint64_t file, std::uint64_t size);
  Pieces::Piece ReadSpooled(Spooled& spooled, std::uint64_t offset, std::size_t count);
  Pieces::Piece ReadLast(std::uint64_t offset);
  bool NeedsSpool(std::uint64_t offset);

  const boost::shared_ptr<Camera> camera_;
  const std::function<void()> onForwardOnly_;
  std::optional<kelva::FileReader> reader_;
  std::uint64_t file_ = 0;
  std::list<Spooled> spools_;  // the one that was asked for last comes first
  bool toldForwardOnly_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_MOUNT_READING_H_
