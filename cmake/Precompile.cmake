# Reads the libraries' headers once per group of sources instead of once per file, which is most of the time that a file
# takes to compile. Not in the dev preset: a header that a file of ours forgets to include has to show somewhere.
option(TOLVANE_PRECOMPILE "Precompile the headers of the libraries" OFF)

# Where the options of two targets differ too much, the compiler reads the headers as text.
set(CMAKE_PCH_WARN_INVALID OFF)
if(TOLVANE_PRECOMPILE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CCACHE_PROGRAM)
  # Without these ccache lets everything pass that comes with precompiled headers.
  add_compile_options(-fpch-preprocess)
  list(INSERT CMAKE_CXX_COMPILER_LAUNCHER 3 CCACHE_SLOPPINESS=pch_defines,time_macros)
endif()

set(tolvane_language_headers <algorithm> <array> <chrono> <filesystem> <functional> <memory> <optional> <string> <vector>)
set(tolvane_wire_headers <asio/awaitable.hpp> <asio/co_spawn.hpp> <asio/io_context.hpp> <asio/ip/tcp.hpp>
    <asio/steady_timer.hpp> <openssl/ssl.h>)
set(tolvane_window_headers <QAbstractButton> <QAction> <QApplication> <QComboBox> <QDir> <QFile> <QLabel> <QLineEdit>
    <QMessageBox> <QStringList> <QTimer> <QUrl>)

# Makes the headers for `target`.
function(tolvane_precompile target)
  if(TOLVANE_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${ARGN} ${tolvane_language_headers})
  endif()
endfunction()

# Lets `target` take what was made for `other`.
function(tolvane_precompiled_like target other)
  if(TOLVANE_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ${other})
  endif()
endfunction()
