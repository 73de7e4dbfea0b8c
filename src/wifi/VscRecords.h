#ifndef KELVA_WIFI_VSC_RECORDS_H_
#define KELVA_WIFI_VSC_RECORDS_H_

#include <cstddef>
#include <type_traits>

/// The camera's clock: 14 bytes that the library copies in both directions and never interprets.
struct _VscCdbTime {
  unsigned char bytes[14];
};

static_assert(sizeof(_VscCdbTime) == 14);
static_assert(std::is_trivially_copyable_v<_VscCdbTime>);

/// The camera's information as it sends it (640 bytes, the camera's own fields), and one 32-bit field that
/// `Camera::CameraInformation` sets to -1 before it asks.
struct _VscCdbCameraInformation {
  unsigned char information[640];
  int last;
};

static_assert(sizeof(_VscCdbCameraInformation) == 644);
static_assert(offsetof(_VscCdbCameraInformation, last) == 640);
static_assert(std::is_trivially_copyable_v<_VscCdbCameraInformation>);

/// The Wi-Fi setting that a command addresses: 0 or 1. The camera defines which network each one is.
enum _VscWifiType : int {
  kVscWifiType0 = 0,
  kVscWifiType1 = 1,
};

/// The authentication type of the Wi-Fi setting of type 1.
enum _VscWifiAuthType : int {
  kVscWifiAuthWpa2 = 0,  ///< "WPA2"
  kVscWifiAuthWep = 1,   ///< "WEP"
  kVscWifiAuthNone = 2,  ///< "NONE"
};

static_assert(sizeof(_VscWifiType) == 4 && sizeof(_VscWifiAuthType) == 4);

/// The manual exposure controls; the camera defines what each field means. On the wire the six fields take 32 bytes,
/// little-endian and without gaps.
struct _ManualControlsState {
  int first;
  int second;
  float third;
  double fourth;
  double fifth;
  int sixth;
};

static_assert(std::is_trivially_copyable_v<_ManualControlsState>);

#endif  // KELVA_WIFI_VSC_RECORDS_H_
