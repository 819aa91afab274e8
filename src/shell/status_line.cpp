#include "shell/status_line.h"

#include "base/byte_text.h"

void StatusLine::Show(const QString& text)
{
    Current = text.isNull() ? QString("") : text;
    Label.setText(ShownText(text));
}

void StatusLine::ShowLines(const QString& text)
{
    Current = text;
    Label.setText(ShownLines(text, ' '));
}
