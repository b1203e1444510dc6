/// @file
/// The version of the headers. The build reads it from here, so that the library, its SONAME, the
/// packages and the reference say the same.

#ifndef QOVA_VERSION_H
#define QOVA_VERSION_H

#define QOVA_VERSION_MAJOR 1  ///< Changes with the ABI; it is the number in the SONAME.
#define QOVA_VERSION_MINOR 0  ///< Changes when something is added.
#define QOVA_VERSION_PATCH 0  ///< Changes when something is fixed.

#endif
