#ifndef KELVA_VCAM_DEVICE_SAMPLE_IMAGE_H_
#define KELVA_VCAM_DEVICE_SAMPLE_IMAGE_H_

#include <string_view>

#include "base/Bytes.h"

namespace vcam {

/// A small JPEG file (16 x 16 pixels, a grey ramp) that carries this comment, so that two captures never have the same
/// bytes. The comment holds at most 65,533 bytes; more are cut off.
base::Bytes SampleJpeg(std::string_view comment);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_SAMPLE_IMAGE_H_
