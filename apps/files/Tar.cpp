// Builds the tar archive of `kelva report`.
#include "apps/files/Tar.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "apps/files/StoreFile.h"

namespace apps {
namespace {

constexpr std::size_t kBlock = 512;

// Where the fields of a header stand.
constexpr std::size_t kName = 0;
constexpr std::size_t kMode = 100;
constexpr std::size_t kOwner = 108;
constexpr std::size_t kGroup = 116;
constexpr std::size_t kSize = 124;
constexpr std::size_t kTime = 136;
constexpr std::size_t kCheckSum = 148;
constexpr std::size_t kType = 156;
constexpr std::size_t kMagic = 257;

constexpr std::size_t kLongestName = kMode - 1;
constexpr char kFile = '0';
constexpr char kPaxHeader = 'x';

void Put(std::string& header, std::size_t offset, std::string_view text) {
  std::copy(text.begin(), text.end(), header.begin() + static_cast<std::ptrdiff_t>(offset));
}

void PutOctal(std::string& header, std::size_t offset, int digits, unsigned long long value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%0*llo", digits, value);
  Put(header, offset, text.data());
}

unsigned Sum(const std::string& header) {
  unsigned sum = 0;
  for (const char c : header) sum += static_cast<unsigned char>(c);
  return sum;
}

/// A record of a pax header: its own length in decimal digits, "path=" and the name.
std::string PathRecord(std::string_view name) {
  const std::string rest = " path=" + std::string(name) + "\n";
  std::size_t length = rest.size();
  // The digits count as well, and may make the number longer by one.
  while (std::to_string(length).size() + rest.size() != length) length = std::to_string(length).size() + rest.size();
  return std::to_string(length) + rest;
}

/// The name with a number before the extension of its last component.
std::string NumberedPath(std::string_view path, int number) {
  const std::size_t start = path.rfind('/') + 1;
  return std::string(path.substr(0, start)) + Numbered(std::string(path.substr(start)), number);
}

}  // namespace

void Tar::Add(std::string_view name, std::string_view bytes) {
  std::string own(name);
  for (int number = 2; !names_.insert(own).second; ++number) own = NumberedPath(name, number);
  if (own.size() > kLongestName) AddMember(kPaxHeader, "pax", PathRecord(own));
  AddMember(kFile, own, bytes);
}

void Tar::AddMember(char type, std::string_view name, std::string_view bytes) {
  std::string header(kBlock, '\0');
  Put(header, kName, name.substr(0, kLongestName));
  PutOctal(header, kMode, 7, 0600);
  PutOctal(header, kOwner, 7, 0);
  PutOctal(header, kGroup, 7, 0);
  PutOctal(header, kSize, 11, bytes.size());
  PutOctal(header, kTime, 11, static_cast<unsigned long long>(std::max(time_, 0LL)));
  header[kType] = type;
  Put(header, kMagic, std::string_view("ustar\00000", 8));
  Put(header, kCheckSum, "        ");  // blanks while it is summed
  PutOctal(header, kCheckSum, 6, Sum(header));
  header[kCheckSum + 6] = '\0';
  archive_ += header;
  archive_ += bytes;
  archive_.append((kBlock - bytes.size() % kBlock) % kBlock, '\0');
}

std::string Tar::Finish() const {
  return archive_ + std::string(2 * kBlock, '\0');
}

}  // namespace apps
