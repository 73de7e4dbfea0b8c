#ifndef KELVA_DARWIN_SG_SENSE_DATA_H_
#define KELVA_DARWIN_SG_SENSE_DATA_H_

#include <cstdint>
#include <span>

#include "wire/TransferStatus.h"

namespace darwin::sg {

/// The sense key, code and qualifier of sense data in any of its four formats. What the device did not send, or sent in
/// an unknown format, is 0: the device chooses the length of its sense data.
wire::Sense DecodeSense(std::span<const std::uint8_t> sense);

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SENSE_DATA_H_
