#ifndef KELVA_WIFI_SHA1OBJ_H_
#define KELVA_WIFI_SHA1OBJ_H_

#include <string>
#include <vector>

/// One file fetched by a bulk read, a value that owns its bytes.
struct _Sha1obj {
  std::vector<char> data;  ///< the file's bytes, exactly as received
  std::string name;        ///< its name (crash logs, calibration) or the key under which it was asked for
  unsigned int size = 0;   ///< the body length announced in the bundle's header
};

/// Decodes the header of a crash-log bundle: a 32-bit count N, then N entries of 36 bytes (size, 32-byte name).
/// Returns N records in table order with `name` and `size` filled and `data` empty. The bundle must hold the whole
/// table; `data` is not null.
std::vector<_Sha1obj> UnpackCrashLogHeader(const char* data);

/// Decodes the header of a calibration bundle: always 31 entries of 36 bytes (size, 32-byte name), no count.
/// Returns exactly 31 records with `name` and `size` filled and `data` empty. The bundle must hold 1,116 bytes.
std::vector<_Sha1obj> UnpackCalibrationHeader(const char* data);

/// Reads `count` unsigned 32-bit little-endian values from the start of a bundle, which must hold 4 x count bytes.
std::vector<unsigned int> UnpackBatchHeader(unsigned int count, const char* data);

/// Reads the two part sizes of a compressed-raw bundle, which must hold 8 bytes. Returns exactly two values.
std::vector<unsigned int> UnpackRawCompressionHeader(const char* data);

#endif  // KELVA_WIFI_SHA1OBJ_H_
