#include "controls/entry_delegate.h"

#include "base/byte_text.h"

#include <QApplication>
#include <QStyle>
#include <algorithm>
#include <vector>

namespace {

constexpr std::ptrdiff_t Measured = 32;  // in a proportional font the longest text is not always the widest

}  // namespace

QSize EntryDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QStyle* style = option.widget != nullptr ? option.widget->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option.widget) + 1;
    return QStyledItemDelegate::sizeHint(option, index).expandedTo(QSize(Width + 2 * margin, 0));
}

int EntryDelegate::WidestOf(const QStringList& entries, const QFontMetrics& metrics)
{
    std::vector<const QString*> longest;
    longest.reserve(static_cast<std::size_t>(entries.size()));
    for (const QString& entry : entries) longest.push_back(&entry);
    const auto end = longest.begin() + std::min(Measured, static_cast<std::ptrdiff_t>(longest.size()));
    std::partial_sort(longest.begin(), end, longest.end(),
                      [](const QString* left, const QString* right) { return left->size() > right->size(); });
    int width = 0;
    std::for_each(longest.begin(), end,
                  [&](const QString* entry) { width = std::max(width, metrics.horizontalAdvance(ShownText(*entry))); });
    return width;
}
