#pragma once

// Marks the public surface of the host platform library (libvelhost).
#if defined(_WIN32)
#if defined(VELHOST_BUILDING)
#define VELHOST_API __declspec(dllexport)
#else
#define VELHOST_API __declspec(dllimport)
#endif
#else
#define VELHOST_API __attribute__((visibility("default")))
#endif
