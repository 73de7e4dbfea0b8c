#ifndef KELVA_WIFI_CATALOGUE_DECODER_H_
#define KELVA_WIFI_CATALOGUE_DECODER_H_

#include <vector>

#include "DcfObj.h"

namespace kelva {

/// The pictures of a whole answer: header, field table, records. Protocol errors are those of Camera::GetDcf.
std::vector<DcfObj> DecodeCatalogue(const std::vector<char>& answer);

}  // namespace kelva

#endif  // KELVA_WIFI_CATALOGUE_DECODER_H_
