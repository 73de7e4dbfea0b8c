#ifndef KELVA_UI_OSX_KELVA_HELPER_CALLBACK_H_
#define KELVA_UI_OSX_KELVA_HELPER_CALLBACK_H_

#include <boost/shared_ptr.hpp>

#include "src/wifi/Camera.h"

/// The attach callback: launches the desktop application when the flag (a bool) that `context` points at is true. Keeps
/// nothing of the camera. An application that is not installed is passed over; a launch that fails is not reported.
void Callback(boost::shared_ptr<Camera> camera, void* context);

#endif  // KELVA_UI_OSX_KELVA_HELPER_CALLBACK_H_
