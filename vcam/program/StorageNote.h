#ifndef KELVA_VCAM_PROGRAM_STORAGE_NOTE_H_
#define KELVA_VCAM_PROGRAM_STORAGE_NOTE_H_

#include <filesystem>
#include <string>

namespace vcam::program {

/// One sentence when a storage folder holds JPEG files, but no picture where a camera keeps pictures; else empty. Looks
/// at no more than the first ten thousand names. Throws std::runtime_error when the folder cannot be read.
std::string StorageNote(const std::filesystem::path& storage);

}  // namespace vcam::program

#endif  // KELVA_VCAM_PROGRAM_STORAGE_NOTE_H_
