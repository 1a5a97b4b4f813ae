/// @file
/// Export marker of the shared library: only what carries ZEL_API is visible outside libzel.
#pragma once

#if defined(_WIN32)
#if defined(ZEL_BUILDING)
#define ZEL_API __declspec(dllexport)
#else
#define ZEL_API __declspec(dllimport)
#endif
#else
#define ZEL_API __attribute__((visibility("default")))
#endif
