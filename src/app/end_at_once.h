#pragma once

/// Ends the process now, whatever its threads are doing: nothing is stored, nothing is closed, nobody is waited for.
[[noreturn]] void EndAtOnce();
