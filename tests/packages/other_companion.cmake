# project(qova) reads this file: see CMAKE_PROJECT_qova_INCLUDE.
set(directory ${CMAKE_BINARY_DIR}/other_companion)
foreach(header socket/address.h netconf/sdp.h)
    file(WRITE ${directory}/${header} "#include \"${CMAKE_CURRENT_LIST_DIR}/other_companion.h\"\n")
endforeach()
add_library(other_companion INTERFACE)
target_include_directories(other_companion INTERFACE ${directory})

add_executable(consumer ${CMAKE_CURRENT_LIST_DIR}/consumer/consumer.cpp)
target_link_libraries(consumer PRIVATE qova)
target_compile_features(consumer PRIVATE cxx_std_17)
