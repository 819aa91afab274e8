#pragma once

class ErrorRecord;
class Language;
class QWidget;

/// Puts the texts of a language in the place of the design numbers of a window's controls.
///
/// A control names its text by its property "Tag", a menu entry by its caption, a tool tip by itself: each holds the
/// decimal number of a text. Tag 999 marks a control without a text of its own, 777 one that keeps its tool tip too.
/// Lists, check boxes and drive lists are left alone. A number that leads to no text changes nothing.
///
/// Afterwards the controls' accessible names are set anew (controls/accessible_names.h). User-interface thread.
void SetCaptions(QWidget& window, const Language& language, ErrorRecord& errors);
