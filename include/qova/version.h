/// @file
/// The version of libqova. The build reads it from this file for the library, its SONAME, the
/// packages and the reference.

#ifndef QOVA_VERSION_H
#define QOVA_VERSION_H

#define QOVA_VERSION_MAJOR 1  ///< Changes with the ABI; the number in the SONAME.
#define QOVA_VERSION_MINOR 1  ///< Changes with an addition.
#define QOVA_VERSION_PATCH 0  ///< Changes with a fix.

#endif
