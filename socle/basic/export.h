#pragma once

/// Marks what the shared library exports; everything else in it is hidden. An inline virtual operation is marked by
/// itself, so that the library and its users have one function: a compiler that guesses the target of a call, and puts
/// it in place, compares addresses.
#define SOCLE_API __attribute__((visibility("default")))

// The compilers' default dialect defines this word, which is also the name of one of our namespaces.
#undef unix
