#pragma once

// Marks the public surface of libvelcg. The library's own sources define
// VELCG_BUILDING and export; every client imports (Windows) or sees the
// default visibility of a build that hides everything else.
#if defined(_WIN32)
#if defined(VELCG_BUILDING)
#define VELCG_API __declspec(dllexport)
#else
#define VELCG_API __declspec(dllimport)
#endif
#else
#define VELCG_API __attribute__((visibility("default")))
#endif

// The C entry points that the host looks up by name, marked the same way.
#define VELCG_C_EXPORT VELCG_API

// The public surface of libvelcg_python, whose sources define
// VELCG_PYTHON_BUILDING.
#if defined(_WIN32)
#if defined(VELCG_PYTHON_BUILDING)
#define VELCG_PYTHON_API __declspec(dllexport)
#else
#define VELCG_PYTHON_API __declspec(dllimport)
#endif
#else
#define VELCG_PYTHON_API __attribute__((visibility("default")))
#endif
