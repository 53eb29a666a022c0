#pragma once
/* All that a C program for the Colour Genie can use. */

#include <genie/basic.h>
#include <genie/disk.h>
#include <genie/graphics.h>
#include <genie/keys.h>
#include <genie/screen.h>
#include <genie/sound.h>
#include <genie/sticks.h>
