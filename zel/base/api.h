/// @file
/// Export marker of the shared library: only what carries ZEL_API is visible outside libzel, but
/// for members of such classes that carry ZEL_LOCAL.
#pragma once

#if defined(_WIN32)
#if defined(ZEL_BUILDING)
#define ZEL_API __declspec(dllexport)
#else
#define ZEL_API __declspec(dllimport)
#endif
#define ZEL_LOCAL
#else
#define ZEL_API __attribute__((visibility("default")))
#define ZEL_LOCAL __attribute__((visibility("hidden")))
#endif
