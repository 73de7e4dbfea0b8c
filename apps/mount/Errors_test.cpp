#include "apps/mount/Errors.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>

#include "apps/commandline/Failure.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/FileReader.h"

namespace apps {
namespace {

TEST(ErrorsTest, EachFailureHasItsNumber) {
  using Reason = kelva::FileReadError::Reason;
  EXPECT_EQ(ErrnoOf(SystemError(ESTALE)), ESTALE);
  EXPECT_EQ(ErrnoOf(Failure(ExitCode::kBusy, "held")), EBUSY);
  EXPECT_EQ(ErrnoOf(Failure(ExitCode::kGone, "gone")), ENODEV);
  EXPECT_EQ(ErrnoOf(SystemFailure("write", ENOSPC)), ENOSPC);
  EXPECT_EQ(ErrnoOf(kelva::FileReadError(Reason::kCameraLost, "x")), ENODEV);
  EXPECT_EQ(ErrnoOf(kelva::FileReadError(Reason::kTruncated, "x")), EIO);
  EXPECT_EQ(ErrnoOf(CameraTransferError("Transfer error\nCDB=[c4 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00]\n"
                                        "ret=0xe00002c0 result.status=0x00000000")),
            ENODEV);
  EXPECT_EQ(ErrnoOf(std::bad_alloc()), ENOMEM);
}

}  // namespace
}  // namespace apps
