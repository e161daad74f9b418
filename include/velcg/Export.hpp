#pragma once

// Marks the public surface of libvelcg.
#if defined(_WIN32)
#if defined(VELCG_BUILDING)
#define VELCG_API __declspec(dllexport)
#else
#define VELCG_API __declspec(dllimport)
#endif
#define VELCG_C_EXPORT __declspec(dllexport)
#else
#define VELCG_API __attribute__((visibility("default")))
#define VELCG_C_EXPORT __attribute__((visibility("default")))
#endif
