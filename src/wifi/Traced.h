#ifndef KELVA_WIFI_TRACED_H_
#define KELVA_WIFI_TRACED_H_

#include <boost/shared_ptr.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "Camera.h"
#include "VscCdb.h"

namespace kelva {

/// One call of Camera::Transfer: what was asked and what came of it. What it refers to lives as long as the call of the
/// function that is told of it.
struct Exchange {
  enum class Result {
    kDone,    ///< Transfer returned true
    kFalse,   ///< Transfer returned false
    kFailed,  ///< Transfer threw
  };
  /// The two codes of a failed transfer.
  struct Codes {
    std::int32_t returnCode;  ///< of the system's call, 0 when the call itself succeeded
    std::uint32_t status;     ///< of the command, in the driver's own form; meaningless unless returnCode is 0
  };

  _VscCdb block{};
  int direction = 0;  ///< as the command gave it: 1 to the camera, 2 from it, anything else no data
  int asked = 0;      ///< `size` on entry: the bytes to send, or the room for an answer
  /// The time of the call, without the time of the functions that are told of it.
  std::chrono::steady_clock::time_point begin{};
  std::chrono::nanoseconds took{};
  Result result = Result::kDone;
  int moved = 0;                 ///< `size` on return, as the transport set it; 0 unless the result is kDone
  std::optional<Codes> codes{};  ///< where the failure carries them, as OsxCamera's does
  std::string_view error{};      ///< the text of the failure
  /// The bytes of the data phase: those handed over to be sent, or those that arrived, at most as many as were asked
  /// for. Passphrases and pictures are among them.
  std::span<const char> payload{};
};

/// Who is told of exchanges. An empty function is not called.
struct TraceFunctions {
  /// An exchange is over.
  std::function<void(const Exchange&)> ended;
  /// An exchange begins: only `block`, `direction`, `asked` and, for bytes to send, `payload` hold anything. The last call
  /// without a call of `ended` names the command in which a camera hangs.
  std::function<void(const Exchange&)> began;
};

/// A camera that passes everything on to `camera`, which is not null, and tells `functions` of each exchange. It sends what
/// `camera` would send: the command set runs over its Transfer, with the transport's own sizes of chunks. (A transport that
/// overrides commands beside Camera's pure functions is traced without its overrides.) What the hex-dump switch says is
/// passed on with each exchange.
///
///     const auto traced = kelva::Traced(camera, {.ended = [](const kelva::Exchange& exchange) { Log(exchange); }, .began = {}});
///
/// Ownership: the new camera shares `camera`, so the session ends when both pointers are gone, or with Close.
///
/// Threads: the functions run on the thread of the command, inside it. They must not use the camera or drop it.
///
/// Errors: an exception of `camera` goes on unchanged. A std::exception of the functions is dropped, so that being observed
/// changes no command.
boost::shared_ptr<Camera> Traced(boost::shared_ptr<Camera> camera, TraceFunctions functions);

}  // namespace kelva

#endif  // KELVA_WIFI_TRACED_H_
