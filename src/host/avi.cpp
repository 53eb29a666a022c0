#include "host/avi.h"

#include "platform/host_services.h"

int Video_CreateBitmap() { return 0; }
int Video_OpenOutput(const std::string& /*path*/) { return 0; }
void Video_CloseOutput() {}
void Video_ConvertBitmap() {}

void host_capture_frame() { Video_ConvertBitmap(); }
