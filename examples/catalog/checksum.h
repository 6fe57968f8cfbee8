#pragma once

#include "side_files.h"

/// The CRC-32 of the bytes, as the usual tools have it.
uint32 checksum(extent const & bytes);
