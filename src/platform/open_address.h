#pragma once

#include <QString>

/// Hands an address to the program that the system opens such addresses with: the user's browser, for a web page.
/// Returns at once; a system without one does nothing. User-interface thread.
void OpenAddress(const QString& address);
