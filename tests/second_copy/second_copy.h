// A second copy of libqova in the same process, as a plug-in has it that links the library
// statically and hides it: its classes have the same names, and type information of their own.

#ifndef QOVA_TESTS_SECOND_COPY_H
#define QOVA_TESTS_SECOND_COPY_H

#include <memory>

#include "qova/media.h"

// A full media of the second copy.
std::unique_ptr<QOVA_Media> full_media_of_second_copy();

#endif
