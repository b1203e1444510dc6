/// @file
/// What every public header of libqova needs: the version, the check of the standard library's
/// string ABI, and the mark of exported names.

#ifndef QOVA_EXPORT_H
#define QOVA_EXPORT_H

#include <string>

/// @name Version
/// The version of the headers. The build reads it from here, so that the library, its SONAME, the
/// packages and the reference say the same.
/// @{
#define QOVA_VERSION_MAJOR 1  ///< Changes with the ABI; it is the number in the SONAME.
#define QOVA_VERSION_MINOR 0  ///< Changes when something is added.
#define QOVA_VERSION_PATCH 0  ///< Changes when something is fixed.
/// @}

// std::string and std::list differ in layout between libstdc++'s two ABIs, and both are members of
// public classes: a mixture would link in part and corrupt memory.
#if defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI
#error \
    "libqova uses the C++11 ABI of std::string and std::list: compile with -D_GLIBCXX_USE_CXX11_ABI=1"
#endif

/// Marks a name that libqova.so exports.
#define QOVA_API __attribute__((visibility("default")))

#endif
