#pragma once

#include "socle/platform/code_page_tables.h"

/// What the pages of the native system hold, where the tables of hosts differ.
namespace platform {

/// Makes the units of a page, as the host has them, those of the native one.
void correct(uint32 number, code_page & page);

/// Whether a pair is not written for its unit if there is another one.
bool is_second_form(uint32 number, unsigned code);

} // namespace platform
