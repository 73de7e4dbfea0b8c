#ifndef KELVA_VCAM_DEVICE_SENSE_CODES_H_
#define KELVA_VCAM_DEVICE_SENSE_CODES_H_

#include "wire/Command.h"

// The reasons for which the camera refuses a command (key, additional code, qualifier).

namespace vcam::sense {

inline constexpr wire::Sense kNone{0x00, 0x00, 0x00};
inline constexpr wire::Sense kBecomingReady{0x02, 0x04, 0x01};
inline constexpr wire::Sense kMicrocodeDownload{0x02, 0x04, 0x07};
inline constexpr wire::Sense kWriteError{0x03, 0x0C, 0x00};
inline constexpr wire::Sense kReadError{0x03, 0x11, 0x00};
inline constexpr wire::Sense kInternalFailure{0x04, 0x44, 0x00};
inline constexpr wire::Sense kNotFound{0x05, 0x14, 0x01};
inline constexpr wire::Sense kWrongDataLength{0x05, 0x1A, 0x00};
inline constexpr wire::Sense kUnknownOperation{0x05, 0x20, 0x00};
inline constexpr wire::Sense kOutOfRange{0x05, 0x21, 0x00};
inline constexpr wire::Sense kBadCommandField{0x05, 0x24, 0x00};
inline constexpr wire::Sense kBadParameter{0x05, 0x26, 0x00};
inline constexpr wire::Sense kWrongSequence{0x05, 0x2C, 0x00};
inline constexpr wire::Sense kWriteProtected{0x07, 0x27, 0x00};
inline constexpr wire::Sense kStorageFull{0x0D, 0x00, 0x00};

}  // namespace vcam::sense

#endif  // KELVA_VCAM_DEVICE_SENSE_CODES_H_
