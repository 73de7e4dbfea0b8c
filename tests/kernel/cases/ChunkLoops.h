#ifndef KELVA_TESTS_KERNEL_CASES_CHUNK_LOOPS_H_
#define KELVA_TESTS_KERNEL_CASES_CHUNK_LOOPS_H_

#include <cstdint>
#include <string>

#include "src/wifi/Camera.h"

// Ways to read the data set that is selected in a camera, chunk by chunk of 64 KiB, and the copies that are made on the way.
// All give the nanoseconds that it took, and throw std::runtime_error when a chunk is not what was asked for.

/// Through the library's transport.
std::uint64_t TimeTransfers(Camera& camera, std::uint32_t size);

/// With nothing between this process and the kernel: indirect SG_IO over a reserved buffer of one chunk.
std::uint64_t TimeBareLoop(const std::string& node, std::uint32_t size);

/// The same, with the data left in the kernel's buffer, which is mapped into this process: no copy at all.
std::uint64_t TimeMappedLoop(const std::string& node, std::uint32_t size);

/// A copy of that many bytes by itself, chunk by chunk from one buffer into another.
std::uint64_t TimeCopies(std::uint32_t size);

/// The same into a vector that grows up to the whole, reserved at once, as a file is handed over.
std::uint64_t TimeGathering(std::uint32_t size);

/// A whole file through the library, handed over as one vector.
std::uint64_t TimeReadFile(Camera& camera, const std::string& path);

#endif  // KELVA_TESTS_KERNEL_CASES_CHUNK_LOOPS_H_
