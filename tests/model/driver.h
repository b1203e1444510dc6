// Turns bytes into operations on several capabilities, carries each out on the library's objects
// and on the model, and compares the two after each. The same bytes mean the same on every machine.

#ifndef QOVA_TESTS_MODEL_DRIVER_H
#define QOVA_TESTS_MODEL_DRIVER_H

#include <cstddef>
#include <string>

namespace model_driver {

// Runs all operations that the bytes spell.
// Returns what differed first, and in which operation; empty when nothing did.
std::string run(const unsigned char* data, std::size_t size);

// Operations carried out by all runs so far, and those among them in which an allocation failed.
unsigned long long operations();
unsigned long long failed_operations();

}  // namespace model_driver

#endif
