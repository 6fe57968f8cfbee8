#pragma once

#include "carrying.h"
#include "file_record.h"
#include "report.h"

/// Complains of all that `made`, which was carried from `from`, should have and has not; and counts what it has not as
/// nobody asked for it. `refused` is what its host would not take.
void tell_losses(file_record const & from, file_record const & made, host::refusals const & refused,
                 carrying const & how, report & report);
