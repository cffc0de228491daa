# How every target of the project is compiled: link to stk_options.
add_library(stk_options INTERFACE)
target_compile_options(stk_options INTERFACE -Wall -Wextra)
target_include_directories(stk_options INTERFACE ${PROJECT_SOURCE_DIR}/include)

# What the sanitizers add to the code takes several times as long to optimise as the code itself; -Og
# saves that, and -g1 is what their reports show.
if(STK_SANITIZE)
  set(flags -fsanitize=${STK_SANITIZE} -fno-omit-frame-pointer -Og -g1)
  if(STK_SANITIZE MATCHES "undefined")
    list(APPEND flags -fno-sanitize-recover=undefined)
  endif()
  # The instrumentation hides initialisations from this warning; the plain build keeps it.
  add_compile_options(${flags} -Wno-maybe-uninitialized)
  add_link_options(${flags})
endif()
