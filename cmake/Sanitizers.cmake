# Builds everything with the sanitizers named in TOLVANE_SANITIZE.
if(TOLVANE_SANITIZE)
  add_compile_options(-fsanitize=${TOLVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOLVANE_SANITIZE})
  if(TOLVANE_SANITIZE MATCHES "thread")
    # The thread sanitizer does not understand memory fences; Asio's queues are guarded by locks all the same.
    add_compile_definitions(ASIO_DISABLE_FENCED_BLOCK)
  endif()
endif()
