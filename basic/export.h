#pragma once

/// Marks what the shared library exports; everything else in it is hidden.
#define SOCLE_API __attribute__((visibility("default")))

// The compilers' default dialect defines this word, which is also the name of one of our namespaces.
#undef unix
