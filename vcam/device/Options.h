#ifndef KELVA_VCAM_DEVICE_OPTIONS_H_
#define KELVA_VCAM_DEVICE_OPTIONS_H_

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vcam/device/Storage.h"
#include "wire/RegistryNames.h"

namespace vcam {

/// One field of the picture catalogue: its type number and where it lies in each record.
struct CatalogueField {
  std::uint32_t type;
  std::uint32_t offset;
};

/// How the catalogue describes itself. Only types 0 to 9 carry data; other types are announced and their bytes are
/// 0xEE.
struct CatalogueLayout {
  std::uint32_t stride;
  std::vector<CatalogueField> fields;

  /// Types 0 to 9 in order, in 128 bytes.
  static CatalogueLayout Standard();
  /// The same fields, last one first.
  static CatalogueLayout Reordered();
  /// The standard fields with types that no host knows between them.
  static CatalogueLayout UnknownFields();
  /// The standard fields in records of 200 bytes.
  static CatalogueLayout Wide();
  /// The layout that `--catalogue` calls standard, reordered, unknown-fields or wide; nothing for any other name.
  static std::optional<CatalogueLayout> ByName(std::string_view name);
};

/// What a virtual camera is made of. Only the serial number and the storage folder have no default.
struct Options {
  std::string serial;
  /// Drive I: of the camera. Layout: vcam/README.md.
  std::filesystem::path storage;
  /// Whether hosts change that folder, or a view of it that ends with the camera.
  Keep keep = Keep::kInFolder;
  std::string vendor = wire::kVendor;
  std::string product = "Camera";
  std::string revision = "1.00";
  /// SCSI peripheral device type of the inquiry data. No kernel driver claims type 3 (processor).
  std::uint8_t peripheralType = 3;
  CatalogueLayout catalogue = CatalogueLayout::Standard();
  /// Whether the camera knows files by their SHA-1 key: in its catalogue, in batches, in compressed raw data. For that it
  /// reads every picture once.
  bool hasKeys = true;
  /// Whether the camera ignores the offset of a read and sends the next bytes of its selection.
  bool forwardOnly = false;
  /// With a seed, everything that the protocol leaves to the camera is bytes without a meaning: types 5 to 9 of the
  /// catalogue, clock, battery and information record. Lengths stay.
  std::optional<std::uint32_t> opaque{};
  /// How long a reboot and the writing of a received firmware image take.
  std::chrono::milliseconds bootTime{1500};
  std::chrono::milliseconds upgradeTime{3000};
  /// The host's clock: what the camera's clock shows until a host sets it, and what times reboot and upgrade.
  std::function<std::chrono::system_clock::time_point()> now = [] { return std::chrono::system_clock::now(); };
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_OPTIONS_H_
