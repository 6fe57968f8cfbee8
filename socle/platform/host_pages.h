#pragma once

#include "socle/platform/code_page_tables.h"

/// What the host knows of code pages.
namespace platform {

bool has_host_page(uint32 number);

/// Fills in the units of all bytes and pairs, `code_page::undefined` for those that mean nothing, and which bytes
/// begin a pair. False if the host has no such page.
bool read_host_page(uint32 number, code_page & page);

} // namespace platform
