#pragma once

/// Sounds the system's beep. User-interface thread.
void Beep();
