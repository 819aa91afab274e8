#include "platform/end_requests.h"

// A program without a console is asked to end through its windows: by their closing, and by the end of the session.
EndRequests::EndRequests() = default;
EndRequests::~EndRequests() = default;
