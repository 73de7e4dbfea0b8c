#ifndef KELVA_TESTS_KERNEL_CASES_CARD_H_
#define KELVA_TESTS_KERNEL_CASES_CARD_H_

#include <cstdint>
#include <filesystem>
#include <string>

#include "vcam/device/Options.h"

/// A storage folder with pictures, below /tmp, removed with the object.
class Card {
 public:
  explicit Card(const std::string& name);
  ~Card();
  Card(const Card&) = delete;
  Card& operator=(const Card&) = delete;

  /// Puts a file of pseudo-random bytes on the card: "DCIM/100ABCDE/IMG_0001.JPG".
  void Put(const std::string& path, std::size_t size) const;
  std::string Read(const std::string& path) const;
  const std::filesystem::path& folder() const { return folder_; }
  /// A camera with this card in it.
  vcam::Options Inserted(const std::string& serial) const;

 private:
  std::filesystem::path folder_;
};

/// Three pictures: one of several chunks, one that ends on a chunk, one small.
void PutPictures(const Card& card);

inline constexpr const char* kPicture = "I:\\DCIM\\100ABCDE\\IMG_0001.JPG";
inline constexpr std::size_t kPictureSize = 200'000;

#endif  // KELVA_TESTS_KERNEL_CASES_CARD_H_
