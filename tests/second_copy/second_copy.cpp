#include "second_copy.h"

#include "../building_blocks.h"

std::unique_ptr<QOVA_Media> full_media_of_second_copy() {
    return full<QOVA_Media>();
}
