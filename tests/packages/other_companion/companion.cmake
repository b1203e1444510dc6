# Read by project(qova) through CMAKE_PROJECT_qova_INCLUDE: the companion, and a program to try it.
add_library(other_companion SHARED ${CMAKE_CURRENT_LIST_DIR}/companion.cpp)
target_include_directories(other_companion PUBLIC ${CMAKE_CURRENT_LIST_DIR}/include)
target_compile_features(other_companion PUBLIC cxx_std_17)
target_link_libraries(other_companion PRIVATE $<BUILD_INTERFACE:qova_options>)

add_executable(other_companion_smoke ${CMAKE_CURRENT_LIST_DIR}/smoke.cpp)
target_link_libraries(other_companion_smoke PRIVATE qova qova_options)
