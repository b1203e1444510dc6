#include "text.h"

#include <charconv>

char* qova::put(char* to, int value) {
    return std::to_chars(to, to + longest<int>(), value).ptr;
}

char* qova::put(char* to, unsigned int value) {
    return std::to_chars(to, to + longest<unsigned int>(), value).ptr;
}
