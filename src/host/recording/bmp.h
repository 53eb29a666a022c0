#pragma once
/// BMP writer.

#include "host/recording/picture.h"

#include <string>

/// Writes a picture of any depth. False when that fails, with the reason in errno and a file of
/// that name as it was.
bool bmp_save(const std::string& path, const dib& picture);
