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

/// One camera and its whole command set, written once over `Transfer`. (The folder is called wifi, but holds every
/// command of the camera, not only its Wi-Fi settings.)
///
///     const boost::shared_ptr<Camera> camera = Camera::GetCamera("K1-0042", "", false, false);
///     if (!camera->Open()) return;
///     for (const DcfObj& picture : camera->GetDcf()) {
///       const std::vector<char> jpeg = camera->ReadFile(picture, 1, nullptr, nullptr, true);
///       Save(Camera::DcfFilename(picture, 1), jpeg);
///     }
///
/// Ownership: the platform class makes cameras and hands them out as `boost::shared_ptr<Camera>`. A new camera is not
/// open; the last pointer closes it. Results are values that the caller owns.
///
/// Threads: a command runs on the caller's thread and blocks it. The camera keeps a selected data set between the steps
/// of a command, so a camera carries one command at a time; callers serialise the commands of each camera.
///
/// Errors: a failed transfer always throws `CameraTransferError`. A wrong answer throws `CameraError` while
/// `throwExceptions_` is true; otherwise the command returns its neutral value: false, 0, or empty.
///
/// Progress: `progress(context, fraction)` is called on the caller's thread before a chunk is transferred; it may be
/// null. The fraction is offset / total. No call reports completion.
///
/// Paths are byte strings in the camera's own syntax ("I:\DCIM\100ABCDE\IMG_0001.JPG"), sent unchanged.
///
/// Trust: what a camera sends is not checked beyond its form. Names may hold anything, "../" included. A camera that
/// delivers two or more bytes beyond the announced size of a file or of the information record ends the process.
class Camera {
 public:
  virtual ~Camera();

  virtual std::string Name() const = 0;
  /// Where the camera's storage is mounted on the host; empty when it is not mounted.
  virtual std::string MountPath() const = 0;
  /// Opens the session. True when the session is open, also when it was open before. Never throws.
  virtual bool Open() = 0;
  /// Ends the session, if there is one.
  virtual void Close() = 0;
  /// Sets the function that is called when this camera goes away; a camera has one, and a later call replaces it. The
  /// callback may drop the last pointer to its camera. On any other thread a watched camera may be destroyed only while
  /// no notification can arrive. Throws a CameraError of the platform when the system refuses the registration; the
  /// camera is then not watched.
  virtual void ListenForCameraLost(void (*callback)(void*), void* context) = 0;

  /// True when the camera reports ready. False when it does not, or when the session is not open.
  virtual bool IsReady();
  /// True once the camera has gone and ListenForCameraLost was told so; never becomes false again. Without a call of
  /// ListenForCameraLost it may stay false.
  virtual bool WasDisconnected() = 0;
  /// Sends a line with its NUL to the camera's command monitor. True when the camera took it. False when the session is
  /// not open, and for any CameraError: only the monitor commands swallow transfer errors.
  virtual bool MonitorCmd(const char* line);
  /// As MonitorCmd, with another sub-code. Despite the name it sends the whole text.
  virtual bool MonitorCmdSingleChar(const char* text);

  /// The camera's picture catalogue, in the camera's order. Empty when the session is not open.
  virtual std::vector<DcfObj> GetDcf();

  /// Fetches files by SHA-1 key in one bundle. Each key is sent with the qualifier of the same index; give as many
  /// qualifiers as keys. Returns one record for each key whose size is not 0, in the order asked; `name` is the key.
  virtual std::vector<_Sha1obj> ReadFilesBySha1(std::vector<std::string> keys, std::vector<std::string> qualifiers,
                                                void (*progress)(void*, float), void* context, bool transferFlag);
  /// Deletes files by SHA-1 key with one command. Returns the transfer's result. Does not check that the session is
  /// open.
  virtual bool DeleteBatch(std::vector<std::string> keys, bool transferFlag);
  /// The camera's calibration files, at most 31.
  virtual std::vector<_Sha1obj> ReadCalibration(void (*progress)(void*, float), void* context, bool transferFlag);
  /// The camera's crash logs. With deleteAfterRead each returned log is then deleted by its name; a failed deletion is
  /// ignored.
  virtual std::vector<_Sha1obj> ReadCrashLogs(void (*progress)(void*, float), void* context, bool deleteAfterRead,
                                              bool transferFlag);

  /// Reads a whole file. Empty when the session is not open, a command fails, or the camera announces 0 bytes (an empty
  /// file and a missing one look alike). Throws "ReadFile() truncated." when fewer bytes came than announced. One
  /// surplus byte is cut off; more surplus bytes end the process.
  virtual std::vector<char> ReadFile(const char* path, void (*progress)(void*, float), void* context, bool flag);
  /// Reads one of a picture's files: 1 "JPG", 2 "RAW", 3 "TXT", 4 "128". When the picture has no file of that type,
  /// throws "ReadFile() file type N does not exist." without sending anything.
  virtual std::vector<char> ReadFile(const DcfObj& obj, int type, void (*progress)(void*, float), void* context,
                                     bool flag);
  /// Fetches the compressed raw data of one picture by key: part 1, then part 2. Empty parts are left out.
  virtual std::vector<_Sha1obj> ReadCompressedRaw(std::string key, void (*progress)(void*, float), void* context,
                                                  bool transferFlag);
  /// Writes `length` bytes into a file on the camera. Does not report whether that worked: read the file back.
  virtual void WriteFile(const char* path, const char* data, int length, void (*progress)(void*, float), void* context);

  /// Sends a firmware image of `length` bytes. Does not report whether that worked: ask UpgradeStatus.
  virtual void Upgrade(const char* image, int length, void (*progress)(void*, float), void* context);
  /// The progress of a firmware upgrade and the camera's two flags.
  virtual void UpgradeStatus(float& progress, bool& first, bool& second);
  /// Fills `info`. False when a transfer reported failure. More than one byte beyond the announced size ends the
  /// process.
  virtual bool CameraInformation(_VscCdbCameraInformation& info);
  /// The next piece of the camera's console log. `more` tells whether the camera holds more; it is true after an error.
  virtual std::string ConsoleLog(bool& more);

  virtual void Reboot();
  /// The camera's clock. A short answer throws the default CameraError. With exceptions off, bytes 2 and 3 keep what
  /// arrived and the others are zero.
  virtual _VscCdbTime GetTime();
  virtual void SetTime(const _VscCdbTime& time);

  /// Lists one directory in the camera's order, "." and ".." included when the camera gives them. Empty on failure.
  virtual std::vector<CameraDirent> ReadDir(const char* path);
  /// Appends (path, size) of every file below `path` to `files`, depth first. Skips directories that cannot be read.
  virtual void TraverseDir(const char* path, std::vector<std::pair<std::string, long long>>& files);

  /// The camera's count of completed commands.
  virtual int GetDoneCmdCount();
  /// Deletes a picture with all of its files, by the first 24 bytes of `obj`. Returns the transfer's result.
  virtual bool DeleteDcfObject(const DcfObj& obj);
  /// Deletes a file. Returns the transfer's result.
  virtual bool DeleteFile(const char* path);
  /// The camera's battery level, in the camera's own unit.
  virtual float BatteryLevel();

  /// True when the inquiry data names this maker and the first of the camera's drivers serves the device.
  virtual bool IsScsiInquiryCorrect() const = 0;
  /// Always false; sends nothing. The camera does not support this command.
  virtual bool MonitorKnockCmd();
  /// Asks a running command to stop, from outside that command. A transport may ignore it.
  virtual bool Cancel(bool, bool) = 0;
  /// Clears a pending request to stop. Each command calls it once, before its first transfer.
  virtual void ClearCancel(bool flag) = 0;
  virtual bool IsOpen() = 0;

  /// Sends one command block and runs its data phase.
  ///
  /// direction: 0 no data, 1 to the camera, 2 from the camera; any other value counts as 0. size: on entry the bytes to
  /// send, or the buffer's capacity; on success the bytes moved. buffer: may be null when size is 0. flag: the value
  /// that was given to ClearCancel. Returns true on good status. A failure throws CameraTransferError, or returns false
  /// on a transport that does not throw.
  virtual bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) = 0;

  /// True when the device, or an ancestor of it, carries this USB serial number (exact, case-sensitive).
  virtual bool CompareSn(const char* serial) const = 0;
  /// Always false, the same object included: cameras are told apart by serial number.
  virtual bool operator==(const Camera& other) const;

  /// The cameras attached now, not opened; only those of this maker unless allVendors. The platform defines the other
  /// arguments. A search that the system refuses throws nothing: it prints one line to standard output and gives the
  /// cameras found until then.
  static std::vector<boost::shared_ptr<Camera>> EnumerateCameras(bool allVendors, std::string, bool, int);
  /// The first attached camera with this serial number. Throws "Camera not found.", or returns an empty pointer.
  static boost::shared_ptr<Camera> GetCamera(const char* serialNumber, std::string, bool, bool);
  /// Sets the attach callback of the process. The callback gets a new camera, not opened: for each camera present during
  /// this call, and for each later one from the run loop of the thread that first listened. That thread must live and
  /// run its run loop; once it has ended, no later listening of the process reports anything. A null callback registers
  /// nothing. Throws the platform's CameraError when the system refuses the registration.
  ///
  /// Nobody can stop listening: the callback must be callable until the process ends. A second call replaces the
  /// callback and registers once more: each attach then calls the new callback twice, once with the earlier context and
  /// once with its own. kelva::Listener (Listener.h) has neither limit.
  static void ListenForCameraAttach(void (*callback)(boost::shared_ptr<Camera>, void*), void* context, bool);
  /// As ListenForCameraAttach, with the same limits, for cameras that the system attached without the camera's driver,
  /// which cannot be used.
  static void ListenForBadCameraAttach(void (*callback)(void*), void* context);

  bool CaptureImage(bool flag);
  bool DisableWifi(bool flag);

  /// Sets the network name: "kelva.camera." and `name`, together at most 32 characters. This and the commands below
  /// need an open session; they return false, never an exception, for an argument that is not accepted.
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

  /// The hex-dump switch of this camera, for transports that log their traffic. Each function returns the old value.
  bool enableHexDump();
  bool disableHexDump();
  bool setHexDump(bool on);

 protected:
  /// chunkSize: bytes per chunk of every bulk read and write; a read ends with the first chunk that is not full.
  /// progressInterval: progress is reported at offsets that are multiples of both numbers; not 0. OsxCamera has 65536
  /// and 262144.
  Camera(int chunkSize, int progressInterval);

  bool hexDump_;  // for a transport that logs its traffic; the library does not read it
  int chunkSize_;
  int progressInterval_;

 public:
  /// Whether protocol errors throw CameraError (the default). One plain variable for all users of the library in the
  /// process: set it before any camera is used, and never in a library inside somebody else's program.
  static bool throwExceptions_;
};

#endif  // KELVA_WIFI_CAMERA_H_
