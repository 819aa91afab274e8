#pragma once

/// The maker's places on the network.
namespace Maker {

inline constexpr auto WebAddress = "https://www.quorvell.example/";
inline constexpr auto MessageAddress = "https://www.quorvell.example/tolvane/msg.txt";
inline constexpr auto PaperbirdAddress = "https://www.quorvell.example/paperbird/download";

}  // namespace Maker
