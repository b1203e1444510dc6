// A second copy of libqova in the same process, as in a plug-in that links the library statically
// and hides its symbols: its classes have the same names but their own type information.

#ifndef QOVA_TESTS_SECOND_COPY_H
#define QOVA_TESTS_SECOND_COPY_H

#include <memory>

#include "qova/media.h"

// Returns a full media, made by the second copy.
std::unique_ptr<QOVA_Media> full_media_of_second_copy();

#endif
