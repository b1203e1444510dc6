// A second copy of libqova in the same process, as a plug-in has it that links the library
// statically and hides it: its classes have the same names, and type information of their own.

#ifndef QOVA_TESTS_SECOND_COPY_H
#define QOVA_TESTS_SECOND_COPY_H

#include <memory>

#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/media.h"

// A media with an attribute of each kind and a crypto line, of the copy that the caller is linked
// to.
static inline std::unique_ptr<QOVA_Media> make_media() {
    auto media = std::make_unique<QOVA_Media>();
    media->attributes.push_back(std::make_unique<QOVA_AudioAttribute>().release());
    media->attributes.push_back(std::make_unique<QOVA_FaxAttribute>().release());
    media->attributes.push_back(std::make_unique<QOVA_VideoAttribute>().release());
    media->attributes.push_back(std::make_unique<QOVA_DataAttribute>().release());
    media->cryptos.push_back(std::make_unique<QOVA_Crypto>().release());
    return media;
}

// The same of the second copy.
std::unique_ptr<QOVA_Media> make_media_of_second_copy();

#endif
