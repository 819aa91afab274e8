#pragma once

#include <QComboBox>

/// A drop-down list of drives. Its entries are the disk's own names, so no language touches it.
class DriveListBox final : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;
};
