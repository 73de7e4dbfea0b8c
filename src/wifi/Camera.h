#ifndef KELVA_WIFI_CAMERA_H_
#define KELVA_WIFI_CAMERA_H_

#include <boost/shared_ptr.hpp>
#include <string>
#include <utility>
#include <vector>

#include "CameraDirent.h"
#include "CameraError.h"
#include "DcfObj.h"
#include "Sha1obj.h"
#include "VscCdb.h"
#include "VscRecords.h"

/// One camera, and the whole command set that it understands, written once over `Transfer`.
///
/// Cameras are made by the platform class and held only through `boost::shared_ptr<Camera>`. A new camera is not open.
///
/// Threads: every command runs on the caller's thread and blocks it. A camera carries one command at a time, because
/// the camera keeps the selected data set between the steps of a command; callers serialise commands per camera.
///
/// Errors: `CameraTransferError` when a transfer fails, always. `CameraError` for an answer that is wrong, while
/// `throwExceptions_` is true; otherwise the command returns its neutral value: false, 0, or empty.
///
/// Progress: `progress(context, fraction)` is called on the caller's thread before a chunk is transferred; it may be
/// null. The fraction is offset / total; no call reports completion.
///
/// Paths are byte strings in the camera's own syntax ("I:\DCIM\100ABCDE\IMG_0001.JPG"), sent as they stand.
class Camera {
 public:
  virtual ~Camera();

  virtual std::string Name() const = 0;
  /// Where the camera's storage is mounted on the host; empty when it is not.
  virtual std::string MountPath() const = 0;
  /// Opens the session; true when it is, or already was, open. Never throws.
  virtual bool Open() = 0;
  /// Ends the session; nothing happens when there is none.
  virtual void Close() = 0;
  /// Sets the function that is called when this camera goes away; a camera has one, and a later call replaces it. The
  /// callback may drop the last pointer to its camera. On any other thread a watched camera may be destroyed only while
  /// no notification can arrive. Throws a CameraError of the platform when the system refuses the registration; the
  /// camera is then not watched.
  virtual void ListenForCameraLost(void (*callback)(void*), void* context) = 0;

  /// True when the camera reports ready; false when it is not, or when the session is not open.
  virtual bool IsReady();
  /// True once the camera has gone; never becomes false again.
  virtual bool WasDisconnected() = 0;
  /// Sends a line with its NUL to the camera's command monitor. True when the camera took it; false when the session
  /// is not open and on any CameraError, which is swallowed here and in MonitorCmdSingleChar only.
  virtual bool MonitorCmd(const char* line);
  /// As MonitorCmd, with another sub-code; the whole text is sent.
  virtual bool MonitorCmdSingleChar(const char* text);

  /// The camera's picture catalogue, in the camera's order. Empty when the session is not open.
  virtual std::vector<DcfObj> GetDcf();

  /// Fetches files by SHA-1 key in one bundle; each key is sent with the qualifier of the same index, of which there
  /// must be as many. One record per key whose size is not 0, in the order asked; `name` is the key.
  virtual std::vector<_Sha1obj> ReadFilesBySha1(std::vector<std::string> keys, std::vector<std::string> qualifiers,
                                                void (*progress)(void*, float), void* context, bool transferFlag);
  /// Deletes files by SHA-1 key with one command. Returns the transfer's result; does not ask whether the session is
  /// open.
  virtual bool DeleteBatch(std::vector<std::string> keys, bool transferFlag);
  /// The camera's calibration files, at most 31.
  virtual std::vector<_Sha1obj> ReadCalibration(void (*progress)(void*, float), void* context, bool transferFlag);
  /// The camera's crash logs; with deleteAfterRead each one returned is then deleted by its name, outcomes ignored.
  virtual std::vector<_Sha1obj> ReadCrashLogs(void (*progress)(void*, float), void* context, bool deleteAfterRead,
                                              bool transferFlag);

  /// Reads a whole file. Empty when the session is not open, a command fails or the camera announces 0 bytes (an empty
  /// file and a missing one look alike). Throws "ReadFile() truncated." when fewer bytes came than announced; one
  /// surplus byte is cut off, more stop the process.
  virtual std::vector<char> ReadFile(const char* path, void (*progress)(void*, float), void* context, bool flag);
  /// Reads one of a picture's files: 1 "JPG", 2 "RAW", 3 "TXT", 4 "128". Throws "ReadFile() file type N does not
  /// exist." without sending anything when the picture has none of that type.
  virtual std::vector<char> ReadFile(const DcfObj& obj, int type, void (*progress)(void*, float), void* context,
                                     bool flag);
  /// Fetches the compressed raw data of one picture by key: part 1, then part 2, each only when it is not empty.
  virtual std::vector<_Sha1obj> ReadCompressedRaw(std::string key, void (*progress)(void*, float), void* context,
                                                  bool transferFlag);
  /// Writes `length` bytes into a file on the camera. Reports nothing: read back what matters.
  virtual void WriteFile(const char* path, const char* data, int length, void (*progress)(void*, float), void* context);

  /// Sends a firmware image of `length` bytes. Reports nothing: ask UpgradeStatus.
  virtual void Upgrade(const char* image, int length, void (*progress)(void*, float), void* context);
  /// The progress of a firmware upgrade and the camera's two flags.
  virtual void UpgradeStatus(float& progress, bool& first, bool& second);
  /// Fills `info`; false when a transfer reported failure. More than one byte beyond the announced size stops the
  /// process.
  virtual bool CameraInformation(_VscCdbCameraInformation& info);
  /// The next piece of the camera's console log. `more` tells whether there is more, and is true after an error.
  virtual std::string ConsoleLog(bool& more);

  virtual void Reboot();
  /// The camera's clock. Throws the default CameraError for a short answer; with exceptions off bytes 2 and 3 then keep
  /// whatever arrived and the others are zero.
  virtual _VscCdbTime GetTime();
  virtual void SetTime(const _VscCdbTime& time);

  /// Lists one directory in the camera's order, "." and ".." included when the camera gives them. Empty on failure.
  virtual std::vector<CameraDirent> ReadDir(const char* path);
  /// Appends (path, size) of every file below `path` to `files`, depth first. Directories that cannot be read are
  /// passed over.
  virtual void TraverseDir(const char* path, std::vector<std::pair<std::string, long long>>& files);

  /// The camera's count of completed commands.
  virtual int GetDoneCmdCount();
  /// Deletes a picture with all of its files, addressed by its identity. Returns the transfer's result.
  virtual bool DeleteDcfObject(const DcfObj& obj);
  /// Deletes a file. Returns the transfer's result.
  virtual bool DeleteFile(const char* path);
  /// The camera's battery level, in the camera's own unit.
  virtual float BatteryLevel();

  /// True when the device's inquiry data is that of this maker, served by the first of the camera's drivers.
  virtual bool IsScsiInquiryCorrect() const = 0;
  /// Always false; nothing is sent. Kept as a command that the camera does not support.
  virtual bool MonitorKnockCmd();
  /// Asks a running command to stop, from outside of it. No command depends on it.
  virtual bool Cancel(bool, bool) = 0;
  /// Clears a pending request to stop; each command calls it once before its first transfer.
  virtual void ClearCancel(bool flag) = 0;
  virtual bool IsOpen() = 0;

  /// Sends one command block and runs its data phase.
  ///
  /// direction: 0 none, 1 to the camera, 2 from the camera; any other value is 0. size: in, the bytes to send or the
  /// buffer's capacity; out, on success, the bytes moved. buffer may be null when size is 0. flag: the value given to
  /// ClearCancel just before. True on good status; failure throws CameraTransferError, or returns false on transports
  /// that do not throw.
  virtual bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) = 0;

  /// True when the device, or an ancestor of it, carries this USB serial number (exact, case-sensitive).
  virtual bool CompareSn(const char* serial) const = 0;
  /// Always false, the same object included: cameras are told apart by serial number.
  virtual bool operator==(const Camera& other) const;

  /// The cameras attached now, unopened; only those of this maker unless allVendors. What the other arguments select is
  /// the platform's.
  static std::vector<boost::shared_ptr<Camera>> EnumerateCameras(bool allVendors, std::string, bool, int);
  /// The first attached camera with this serial number. Throws "Camera not found.", or returns an empty pointer.
  static boost::shared_ptr<Camera> GetCamera(const char* serialNumber, std::string, bool, bool);
  /// Sets the process's one attach callback: called during this call for every camera present, later from the run loop
  /// of the thread that first listened, each time with a fresh, unopened camera. A null callback registers nothing.
  /// Throws the platform's CameraError when the system refuses the registration.
  static void ListenForCameraAttach(void (*callback)(boost::shared_ptr<Camera>, void*), void* context, bool);
  /// As ListenForCameraAttach, for cameras that the system attached without the camera's driver (not usable).
  static void ListenForBadCameraAttach(void (*callback)(void*), void* context);

  bool CaptureImage(bool flag);
  bool DisableWifi(bool flag);

  /// Sets the network name: "kelva.camera." and `name`, at most 32 characters together. False for an argument that is
  /// not accepted, as for the three that follow; never an exception.
  bool SetWifiSSID(_VscWifiType type, std::string name);
  /// Sets the passphrase, 9 to 63 characters.
  bool SetWifiPassphrase(_VscWifiType type, std::string passphrase);
  /// Names the authentication type (type 1 only). The command has no data phase: the text does not reach the camera.
  bool SetWifiAuthType(_VscWifiType type, _VscWifiAuthType auth);
  bool GetManualControlsState(_ManualControlsState& state);
  /// Names a manual control by its low byte. The command has no data phase: the value does not reach the camera.
  bool SetManualControl(int control, std::string value);

  /// Checks a catalogue header with its field table; the table must be whole. Throws, or returns false.
  static bool ValidateDcfHeader(const _VscCdbDcfHeader* header);
  /// Decodes one record by `header`'s field table: the later of two fields of one type wins. The record must hold every
  /// field (ValidateDcfHeader checks that); a field whose end exceeds 32 bits is skipped.
  DcfObj UnpackDcf(const _VscCdbDcfHeader* header, const char* record);
  /// The name of one of a picture's files, "IMG_0012.JPG". Throws "Unknown filetype.", or uses "INVALID".
  static std::string DcfFilename(const DcfObj& obj, int type);

  /// The hex-dump switch of this camera, for transports that log their traffic. Each returns the previous value.
  bool enableHexDump();
  bool disableHexDump();
  bool setHexDump(bool on);

 protected:
  /// chunkSize: bytes per chunk of every bulk read and write. progressInterval: bytes between progress calls, not 0.
  Camera(int chunkSize, int progressInterval);

  bool hexDump_;  // for a transport to read; nothing in the library looks at it
  int chunkSize_;
  int progressInterval_;

 public:
  /// Whether protocol errors throw CameraError (the default). Set it before any camera is used.
  static bool throwExceptions_;
};

#endif  // KELVA_WIFI_CAMERA_H_
