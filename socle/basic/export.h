#pragma once

/// Marks what the shared library exports; everything else in it is hidden, as far as the system can.
///
/// On Windows its users import what it exports. `SOCLE_BUILDS` is set while it is built, and `SOCLE_STATIC` where there
/// is no shared library.
#if !defined(_WIN32)
#define SOCLE_API __attribute__((visibility("default")))
#elif defined(SOCLE_STATIC)
#define SOCLE_API
#elif defined(SOCLE_BUILDS)
#define SOCLE_API __declspec(dllexport)
#else
#define SOCLE_API __declspec(dllimport)
#endif

/// Inline virtual operations are exported one by one, so that the library and programs share one address for each:
/// compilers compare it when they inline a guessed virtual call. On Windows what is inline cannot be imported.
#if !defined(_WIN32)
#define SOCLE_INLINE_API SOCLE_API
#else
#define SOCLE_INLINE_API
#endif

// The compilers' default dialect defines this word, which is also the name of one of our namespaces.
#undef unix
