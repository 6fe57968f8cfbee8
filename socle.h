#pragma once

// Every public header of the library.

#include "any/exception.h"
#include "any/utf8_coder.h"
#include "basic/exception.h"
#include "basic/export.h"
#include "basic/types.h"
#include "command/element.h"
#include "command/exception.h"
#include "command/line.h"
#include "command/option.h"
#include "io/exception.h"
#include "nio/blocks.h"
#include "nio/exception.h"
#include "nio/input.h"
#include "nio/output.h"
#include "qpthr/exception.h"
#include "stream/exception.h"
#include "un/digits.h"
#include "un/exception.h"
#include "un/parser.h"
#include "un/tokenizer.h"
