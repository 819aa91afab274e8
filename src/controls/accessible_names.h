#pragma once

class QWidget;

/// Gives every control of a window that shows no words of its own a name for those who cannot see it: its tool tip, or
/// the text of the label that belongs to it. Call it whenever the captions or tool tips have changed. Controls with
/// neither keep the name they have. User-interface thread.
void SetAccessibleNames(QWidget& window);
