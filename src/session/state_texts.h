#pragma once

/// What the status lines say about a state of the transfer component; nothing for states without a text of their own,
/// the error (11) among them.
const char* StateText(int state);
