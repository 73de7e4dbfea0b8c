#ifndef KELVA_APPS_TRACE_DISCRETION_H_
#define KELVA_APPS_TRACE_DISCRETION_H_

#include <cstdint>
#include <optional>
#include <string>

#include "src/wifi/VscCdb.h"

namespace apps {

/// How much of a data phase a trace shows.
enum class Shown {
  kBytes,    ///< its bytes, at most the first 4 KiB
  kHead,     ///< its first 8 bytes; length and checksum of the whole
  kSum,      ///< length and checksum
  kNothing,  ///< not even its length
};

/// What a data phase holds that names a camera or its owner.
enum class Personal { kNothing, kInformation, kNetworkName };

struct Disclosure {
  Shown shown;
  Personal personal;
};

/// Decides what a trace shows of the exchanges with one camera. Follows what is selected, since the chunks of a picture and
/// of the catalogue are read with the same command. Shows the bytes only of what is known to hold none of a picture, a
/// firmware image, a log or a passphrase.
class Discretion {
 public:
  /// For the next exchange; call it once for each, in order.
  Disclosure Begin(const _VscCdb& block);
  /// That exchange was done. A select that fails leaves open what is selected, and then chunks are summed.
  void Done(const _VscCdb& block);

 private:
  std::optional<std::uint8_t> selected_;
};

/// `bytes` without what names a camera or its owner: the letters and digits of an information record or of a network name
/// become A, a and 0, their bytes beyond ASCII a, and the serial number stars. Everything keeps its place and its length.
std::string WithStandIns(std::string bytes, Personal personal, const std::string& serial);

}  // namespace apps

#endif  // KELVA_APPS_TRACE_DISCRETION_H_
