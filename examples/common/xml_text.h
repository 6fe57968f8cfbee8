#pragma once

#include <socle/basic/types.h>

/// `text`, which is fit to be read, as it may stand in an element or an attribute.
narrow_string xml_text(narrow_string const & text);
