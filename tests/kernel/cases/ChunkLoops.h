#ifndef KELVA_TESTS_KERNEL_CHUNK_LOOPS_H_
#define KELVA_TESTS_KERNEL_CHUNK_LOOPS_H_

#include <cstdint>
#include <string>

#include "Camera.h"

// Two ways to read the data set that is selected in a camera, chunk by chunk of 64 KiB. Both give the nanoseconds that
// it took, and throw std::runtime_error when a chunk is not what was asked for.

/// Through the library's transport.
std::uint64_t TimeTransfers(Camera& camera, std::uint32_t size);

/// With nothing between this process and the kernel: indirect SG_IO over a reserved buffer of one chunk.
std::uint64_t TimeBareLoop(const std::string& node, std::uint32_t size);

#endif  // KELVA_TESTS_KERNEL_CHUNK_LOOPS_H_
