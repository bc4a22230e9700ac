# Warnings and sanitizers for every target of the project, set once here.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wno-unused-parameter)
if(STAUDIT_WERROR)
  add_compile_options(-Werror)
endif()
if(STAUDIT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  # The sanitizers' instrumentation makes GCC 12 report uninitialised reads inside the standard
  # library's own headers (std::regex, std::function); the sanitizers check the real reads.
  add_compile_options(-Wno-maybe-uninitialized)
  add_link_options(-fsanitize=address,undefined)
endif()
# Shared libraries must not hide unresolved symbols until load time.
add_link_options(-Wl,--no-undefined)
