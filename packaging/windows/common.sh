# Sourced by the commands beside it, after `top` is set.
. "$top/tools/common.sh"

windows_packages="g++ cmake libboost1.74-dev ninja-build ccache qt6-base-dev qt6-base-dev-tools libgl-dev g++-mingw-w64-x86-64-posix"
wine_packages="wine wine64 fonts-wine"

# The SDK, and what the build takes from the environment.
use_sdk() {
  TOLVANE_WINDOWS_SDK=$("$top/packaging/windows/sdk")
  export TOLVANE_WINDOWS_SDK
}
