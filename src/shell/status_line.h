#pragma once

#include <QLabel>
#include <QString>

/// The status line: one text, replaced by whoever reports progress. User-interface thread.
class StatusLine {
public:
    explicit StatusLine(QLabel& label) : Label(label) {}

    /// Replaces the text. Control characters and undecodable bytes are shown as replacement marks.
    void Show(const QString& text);

    /// Replaces the text by one of the program's own that has several lines; they are shown behind each other.
    void ShowLines(const QString& text);

    /// The text as it was given to Show.
    QString Text() const { return Current.isNull() ? Label.text() : Current; }

    /// Paints the label now instead of with the next pass of the event loop.
    void Repaint() { Label.repaint(); }

private:
    QLabel& Label;
    QString Current;
};
