#pragma once

/// Marks what the shared library exports; everything else in it is hidden. Inline virtual operations are exported one
/// by one, so that the library and programs share one address for each: compilers compare it when they inline a
/// guessed virtual call.
#define SOCLE_API __attribute__((visibility("default")))

// The compilers' default dialect defines this word, which is also the name of one of our namespaces.
#undef unix
