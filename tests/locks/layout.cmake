# Any compiler builds this; a copy of the library includes it by CMAKE_PROJECT_qova_INCLUDE.
add_library(qova_layout OBJECT ${CMAKE_CURRENT_LIST_DIR}/layout.cpp)
target_link_libraries(qova_layout PRIVATE qova qova_options)
