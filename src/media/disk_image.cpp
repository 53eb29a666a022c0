#include "media/disk_image.h"

int diskimg_attach(unsigned /*drive*/, const std::string& /*path*/, disk_geometry* /*geometry*/) {
    return 0;
}
void diskimg_detach(unsigned /*drive*/, bool /*save*/) {}
bool diskimg_is_attached(unsigned /*drive*/) { return false; }
bool diskimg_is_changed(unsigned /*drive*/) { return false; }
std::string diskimg_file_name(unsigned /*drive*/) { return {}; }
