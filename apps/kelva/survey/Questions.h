#ifndef KELVA_APPS_KELVA_SURVEY_QUESTIONS_H_
#define KELVA_APPS_KELVA_SURVEY_QUESTIONS_H_

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "apps/commandline/Stop.h"
#include "src/wifi/Camera.h"

namespace apps::survey {

/// A data set of the camera as it sent it.
struct DataSet {
  std::uint32_t announced = 0;  ///< the size that the camera gave; 0 where it was not asked, as for lists
  std::string bytes;            ///< at most as many as the caller allowed
  bool whole = false;           ///< whether it ended within them
};

/// Reads of one size, one after another.
struct Timing {
  int chunk = 0;  ///< bytes asked for at once
  int reads = 0;
  double medianUs = 0;
};

/// Asks a camera what it is made of, byte by byte, with commands that select, query and read, and no others. Unlike the
/// commands of Camera it checks nothing, so that no answer ends it; it takes no more than it was allowed to. Each function
/// throws CameraTransferError, Stopped, and CameraError when the transport returns false.
class Questions {
 public:
  Questions(boost::shared_ptr<Camera> camera, const Stop& stop) : camera_(std::move(camera)), stop_(stop) {}

  /// The answer to a query, at most `room` bytes.
  std::string Query(std::uint8_t subCode, int room);
  /// The information record, asked for as the library does it (644 bytes at once), and then once more as long as it is.
  DataSet Information();
  DataSet WholeInformation();
  DataSet Catalogue(std::size_t most);
  DataSet Folder(const std::string& path, std::size_t most);
  DataSet File(const std::string& path, std::size_t most);
  /// Reads a file of this size forward, in chunks from 512 bytes to 64 KiB, a few of each.
  std::vector<Timing> TimeChunks(const std::string& path, std::uint32_t size);

 private:
  void Select(std::uint8_t subCode, std::string_view path);
  std::uint32_t Size();
  std::string Chunk(std::uint64_t offset, int room);
  DataSet ReadOn(std::uint32_t announced, std::size_t most);
  int Transfer(const _VscCdb& block, int direction, int size, char* buffer);

  const boost::shared_ptr<Camera> camera_;
  const Stop& stop_;
};

}  // namespace apps::survey

#endif  // KELVA_APPS_KELVA_SURVEY_QUESTIONS_H_
