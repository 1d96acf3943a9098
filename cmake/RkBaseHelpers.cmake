# rkbase_add_qtest(<name> SOURCES <files...> [LIBS <targets...>] [LABELS <labels...>])
# Builds one QtTest executable and registers it with ctest. Every test runs with the offscreen
# platform and the C locale, so that widgets and number formats do not depend on the machine.
function(rkbase_add_qtest name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE rkBaseQt Qt5::Test ${T_LIBS})
  add_test(NAME ${name} COMMAND ${name})
  set(environment "QT_QPA_PLATFORM=offscreen;LC_ALL=C;RKBASE_CORPUS=${RKBASE_CORPUS_DIR}")
  if(RKBASE_SANITIZE)
    # GCC 12's LeakSanitizer crashes ("Tracer caught signal 11") walking the dynamic thread-local
    # data that GLib's event dispatcher sets up once Qt has loaded its image plugins; Qt's own
    # Unix dispatcher has none. Only the sanitizer run changes dispatcher.
    list(APPEND environment "QT_NO_GLIB=1")
  endif()
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${environment}" LABELS "${T_LABELS}")
endfunction()

# rkbase_public_dependency(FIND "<find_dependency arguments>" [PC "<pkg-config modules>"])
# Records a package that the library's public headers or link interface expose, so that the
# installed CMake package and pkg-config file ask for it too.
function(rkbase_public_dependency)
  cmake_parse_arguments(D "" "FIND;PC" "" ${ARGN})
  if(D_FIND)
    set_property(GLOBAL APPEND PROPERTY RKBASE_FIND_DEPENDENCIES "find_dependency(${D_FIND})")
  endif()
  if(D_PC)
    set_property(GLOBAL APPEND PROPERTY RKBASE_PC_REQUIRES "${D_PC}")
  endif()
endfunction()
