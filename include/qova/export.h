/// @file
/// Included by every public header of libqova: the version, checks that the consumer's standard
/// library has the same layouts as libqova's, and the macro that exports a name.

#ifndef QOVA_EXPORT_H
#define QOVA_EXPORT_H

#include <string>

#include "qova/version.h"

// The layouts of std::string and std::list differ between libstdc++'s two ABIs, and both classes
// are members of public classes. Some mixtures would link and corrupt memory.
#if defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI
#error \
    "libqova uses the C++11 ABI of std::string and std::list: compile with -D_GLIBCXX_USE_CXX11_ABI=1"
#endif

// libstdc++'s debug mode changes both layouts, too. To build libqova in debug mode, define
// QOVA_GLIBCXX_DEBUG everywhere.
#if defined(_GLIBCXX_DEBUG) && !defined(QOVA_GLIBCXX_DEBUG)
#error \
    "libqova was built without _GLIBCXX_DEBUG: either drop it, or rebuild libqova with it and define QOVA_GLIBCXX_DEBUG everywhere"
#endif

/// Exports a class or function from libqova.so.
#define QOVA_API __attribute__((visibility("default")))

#endif
