// Export macro of the velmor_core shared library.
#pragma once

/// Marks a declaration as part of the library's public, exported interface.
#if defined(VELMOR_CORE_STATIC)
#define VELMOR_API
#elif defined(_WIN32)
#if defined(VELMOR_CORE_BUILDING)
#define VELMOR_API __declspec(dllexport)
#else
#define VELMOR_API __declspec(dllimport)
#endif
#else
#define VELMOR_API __attribute__((visibility("default")))
#endif
