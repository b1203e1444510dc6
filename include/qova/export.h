/// @file
/// What every public header of libqova needs: the version, the check that the consumer's standard
/// library has the layouts of libqova's, and the mark of exported names.

#ifndef QOVA_EXPORT_H
#define QOVA_EXPORT_H

#include <string>

#include "qova/version.h"

// std::string and std::list differ in layout between libstdc++'s two ABIs, and both are members of
// public classes: a mixture would link in part and corrupt memory.
#if defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI
#error \
    "libqova uses the C++11 ABI of std::string and std::list: compile with -D_GLIBCXX_USE_CXX11_ABI=1"
#endif

// So does libstdc++'s debug mode change both layouts. Whoever has compiled libqova with it, too,
// says so by defining QOVA_GLIBCXX_DEBUG.
#if defined(_GLIBCXX_DEBUG) && !defined(QOVA_GLIBCXX_DEBUG)
#error \
    "libqova was compiled without _GLIBCXX_DEBUG: compile without it, or libqova with it, too, and all with -DQOVA_GLIBCXX_DEBUG"
#endif

/// Marks a name that libqova.so exports.
#define QOVA_API __attribute__((visibility("default")))

#endif
