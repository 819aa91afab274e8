#pragma once

#include <QByteArray>
#include <QString>
#include <filesystem>

/// Text that came as bytes and must be able to go back as the same bytes.
///
/// Names, listing lines and replies travel through the program as QString. What is valid UTF-8 is decoded as such;
/// every other byte 0x80..0xFF becomes the lone low surrogate U+DC80..U+DCFF, which no decoded text can hold.
/// So TextToBytes(BytesToText(b)) == b for every b. Any thread.

/// Decodes bytes; never fails and never loses one.
QString BytesToText(const QByteArray& bytes);

/// The bytes that gave this text; for text typed by the user its UTF-8 form.
QByteArray TextToBytes(const QString& text);

/// The text with everything that cannot be shown harmlessly made visible: escaped bytes, control characters and
/// marks that turn the direction of writing become U+FFFD. For labels, lists and the log, never for the wire.
QString ShownText(const QString& text);

/// The same for a text of several lines, which are separated by a carriage return and a line feed; between them stands
/// what is given.
QString ShownLines(const QString& text, QChar between);

/// A path for the file system: on Unix the text's bytes, on Windows its UTF-16 form, whatever its length.
std::filesystem::path FilePath(const QString& path);

/// The text of a path that came from the file system.
QString PathText(const std::filesystem::path& path);
