#ifndef KELVA_VCAM_DOOR_RETURN_CODES_H_
#define KELVA_VCAM_DOOR_RETURN_CODES_H_

namespace vcam {

// What a call on the user client itself returns; the names and values are the kernel's.
inline constexpr int kReturnSuccess = 0;
inline constexpr int kReturnNoDevice = static_cast<int>(0xE00002C0);
inline constexpr int kReturnBadArgument = static_cast<int>(0xE00002C2);
inline constexpr int kReturnExclusiveAccess = static_cast<int>(0xE00002C5);
inline constexpr int kReturnNotOpen = static_cast<int>(0xE00002CD);
inline constexpr int kReturnTimeout = static_cast<int>(0xE00002D6);

}  // namespace vcam

#endif  // KELVA_VCAM_DOOR_RETURN_CODES_H_
