#ifndef KELVA_BENCHMARKS_ANSWERS_H_
#define KELVA_BENCHMARKS_ANSWERS_H_

#include <cstddef>
#include <string>
#include <vector>

/// Answers of a camera, of any size, for the benchmarks.
namespace bench {

/// `size` bytes without a pattern that a copy could profit from.
std::string Noise(std::size_t size);

/// A catalogue of `pictures` records that carry every field.
std::string Catalogue(std::size_t pictures);

struct Entry {
  std::string name;
  bool directory;
};

/// The listing of a directory with these entries.
std::string Listing(const std::vector<Entry>& entries);

/// Bundles with bodies of `each` bytes: crash logs (counted table), calibration (always 31 files), batch (sizes alone).
std::string CrashLogBundle(std::size_t files, std::size_t each);
std::string CalibrationBundle(std::size_t each);
std::string BatchBundle(std::size_t files, std::size_t each);

}  // namespace bench

#endif  // KELVA_BENCHMARKS_ANSWERS_H_
