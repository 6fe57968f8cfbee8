#pragma once

#include "socle/platform/code_page_tables.h"

/// What the code pages of Win32 hold, where the tables of hosts differ.
namespace platform {

/// Replaces the units of a page, as the host has them, by those of Win32.
void correct(uint32 number, code_page & page);

/// Whether a pair is not written for its unit if there is another one.
bool is_second_form(uint32 number, unsigned code);

} // namespace platform
