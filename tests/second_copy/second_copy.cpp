#include "second_copy.h"

std::unique_ptr<QOVA_Media> make_media_of_second_copy() {
    return make_media();
}
