// Sends one command with SG_IO.

#include "darwin/sg/SgCommand.h"

#include <scsi/sg.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "darwin/sg/SenseData.h"
#include "darwin/sg/SignalsBlocked.h"

namespace darwin::sg {
namespace {

constexpr std::size_t kSenseRoom = 96;  // as much as the kernel keeps
constexpr std::uint16_t kDriverSense = 8;

int KernelDirection(DataPhase phase) {
  if (phase == DataPhase::kNone) return SG_DXFER_NONE;
  return phase == DataPhase::kToDevice ? SG_DXFER_TO_DEV : SG_DXFER_FROM_DEV;
}

sg_io_hdr_t HeaderOf(const SgRequest& request, std::span<std::uint8_t> sense) {
  sg_io_hdr_t header{};
  header.interface_id = 'S';
  header.dxfer_direction = KernelDirection(request.phase);
  header.cmd_len = static_cast<unsigned char>(request.cdb.size());
  header.cmdp = const_cast<unsigned char*>(request.cdb.data());  // the kernel reads it
  header.mx_sb_len = static_cast<unsigned char>(sense.size());
  header.sbp = sense.data();
  header.dxfer_len = request.length;
  header.dxferp = request.data;
  header.flags = request.intoMapped ? kFlagMmapIo : 0;
  header.timeout = request.timeoutMs;
  return header;
}

}  // namespace

bool SgOutcome::Succeeded(std::uint32_t length) const {
  return error == 0 && hostStatus == 0 && driverStatus == 0 && status == wire::kScsiGood && moved >= 0 &&
         moved <= std::int64_t{length};
}

SgOutcome RunCommand(SgSystem& system, int descriptor, const SgRequest& request) {
  std::array<std::uint8_t, kSenseRoom> sense{};
  sg_io_hdr_t header = HeaderOf(request, sense);
  SgOutcome outcome;
  {
    SignalsBlocked untilDone;
    if (system.Ioctl(descriptor, SG_IO, &header) < 0) outcome.error = errno;
  }
  if (outcome.error != 0) return outcome;
  outcome.hostStatus = header.host_status;
  outcome.driverStatus = static_cast<std::uint16_t>(header.driver_status & ~kDriverSense);
  outcome.status = header.status;
  outcome.sense = DecodeSense(std::span(sense).first(std::min<std::size_t>(header.sb_len_wr, sense.size())));
  outcome.moved = std::int64_t{request.length} - header.resid;
  return outcome;
}

}  // namespace darwin::sg
